#include "link/configdoc.h"

#include <json/json.h>

#include <ostream>

#include "foundation/str_util.h"

namespace {

// Value and flags (and with them whether an attribute is present) of one leaf.
template <class Leaf>
void copy_leaf(Leaf& to, const Leaf& from)
{
    to.set(from.get());
    to.set_flags(from.flags());
}

}  // namespace

// --- Defines ---

void Defines::Add(const std::string& name, const std::string& value)
{
    _map.emplace(name, value);
}

std::string Defines::Apply(std::string text) const
{
    for (;;) {
        if (text.size() < 2)
            return text;
        const std::string::size_type start = text.find("$(");
        if (start == std::string::npos)
            return text;
        const std::string::size_type end = text.find(')', start);
        const std::string name =
            end == std::string::npos ? text.substr(start + 2) : text.substr(start + 2, end - start - 2);
        const auto found = _map.find(name);
        const std::string value = found == _map.end() ? std::string() : found->second;
        text.replace(start, end == std::string::npos ? std::string::npos : end - start + 1, value);
    }
}

void Defines::ApplyDefines()
{
    for (auto& define : _map)
        define.second = Apply(define.second);
}

std::ostream& operator<<(std::ostream& out, const Defines& defines)
{
    Json::Value object;  // null until the first member
    for (const auto& define : defines.Map())
        object[define.first] = define.second;
    // Helpers read the defines as one line, which is what the fast writer makes.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::FastWriter writer;
    out << writer.write(object);
#pragma GCC diagnostic pop
    return out;
}

// --- runtime forms ---

void CmdConfig::ApplyDefines(const Defines& defines)
{
    cmd = StripNonSpaceWSOne(defines.Apply(cmd));
    description = StripNonSpaceWSOne(defines.Apply(description));
}

void ButtonConfig::ApplyDefines(Defines& defines)
{
    defines.ApplyDefines();
    for (std::string* text : {&caption, &service, &version, &uboot})
        *text = defines.Apply(StripNonSpaceWSOne(*text));
    for (const auto& command : cmds)
        command->ApplyDefines(defines);
}

// --- the document ---

void ConfigDocServices::_copy(ConfigurableString& to, const ConfigurableString& from)
{
    copy_leaf(to, from);
}

ConfigDocDefine::ConfigDocDefine(const std::string& tag) : ConfigurableComposite(tag)
{
    add(_name);
    add(_value);
}

ConfigDocDefine& ConfigDocDefine::operator=(const ConfigDocDefine& other)
{
    copy_leaf(_name, other._name);
    copy_leaf(_value, other._value);
    return *this;
}

ConfigDocCommand::ConfigDocCommand(const std::string& tag) : ConfigurableString(tag, "")
{
    // Absent until a file gives them.
    for (Configurable* attribute :
         std::initializer_list<Configurable*>{&_description, &_runtime, &_nofail, &_nooutput, &_retrycount, &_retrywait}) {
        attribute->set_enabled(false);
        add_attribute(*attribute);
    }
}

ConfigDocCommand& ConfigDocCommand::operator=(const ConfigDocCommand& other)
{
    copy_leaf<ConfigurableString>(*this, other);
    copy_leaf(_description, other._description);
    copy_leaf(_runtime, other._runtime);
    copy_leaf(_nofail, other._nofail);
    copy_leaf(_nooutput, other._nooutput);
    copy_leaf(_retrycount, other._retrycount);
    copy_leaf(_retrywait, other._retrywait);
    return *this;
}

std::shared_ptr<CmdConfig> ConfigDocCommand::Get() const
{
    // A fresh list child holds its defaults until an attribute is read, so the values serve as they are.
    auto command = std::make_shared<CmdConfig>();
    command->cmd = get();
    command->description = _description.get();
    command->runtime = static_cast<int>(_runtime.get());
    command->nofail = _nofail.get();
    command->nooutput = _nooutput.get();
    command->retrycount = static_cast<int>(_retrycount.get());
    command->retrywait = static_cast<int>(_retrywait.get());
    return command;
}

ConfigDocButton::ConfigDocButton(const std::string& tag) : ConfigurableComposite(tag)
{
    add(_caption);
    add(_cmds);
    for (ConfigurableString* attribute : {&_service, &_version, &_uboot, &_standalone}) {
        attribute->set_enabled(false);
        add_attribute(*attribute);
    }
}

ConfigDocButton& ConfigDocButton::operator=(const ConfigDocButton& other)
{
    copy_leaf(_caption, other._caption);
    _cmds = other._cmds;
    copy_leaf(_service, other._service);
    copy_leaf(_version, other._version);
    copy_leaf(_uboot, other._uboot);
    copy_leaf(_standalone, other._standalone);
    return *this;
}

std::shared_ptr<ButtonConfig> ConfigDocButton::Get() const
{
    auto button = std::make_shared<ButtonConfig>();
    button->caption = _caption.get();
    button->service = _service.get();
    button->version = _version.get();
    button->uboot = _uboot.get();
    button->standalone = _standalone.is_enabled();
    for (const Configurable* child : _cmds.children())
        button->cmds.push_back(static_cast<const ConfigDocCommand&>(*child).Get());
    return button;
}

ConfigDocInstrument::ConfigDocInstrument(const std::string& tag) : ConfigurableComposite(tag)
{
    for (ConfigurableString* child : {&_name, &_model, &_address, &_port})
        add(*child);
}

ConfigDocInstrument& ConfigDocInstrument::operator=(const ConfigDocInstrument& other)
{
    copy_leaf(_name, other._name);
    copy_leaf(_model, other._model);
    copy_leaf(_address, other._address);
    copy_leaf(_port, other._port);
    return *this;
}

NamedInstrument ConfigDocInstrument::Get() const
{
    return NamedInstrument::Make(_name.get(), _model.get(), _address.get(), _port.get());
}

ConfigDoc::ConfigDoc() : ConfigurableComposite("config")
{
    add(_title);
    add(_description);
    add(_services);
    add(_defines);
    add(_buttons);
    add(_instruments);
}

void ConfigDoc::GetDefines(Defines& defines) const
{
    for (const Configurable* child : _defines.children()) {
        const auto& define = static_cast<const ConfigDocDefine&>(*child);
        defines.Add(define.Name().get(), define.Value().get());
    }
}

void ConfigDoc::GetServices(std::vector<std::string>& services) const
{
    for (const Configurable* child : _services.children())
        services.push_back(static_cast<const ConfigurableString&>(*child).get());
}

void ConfigDoc::GetButtons(std::vector<std::shared_ptr<ButtonConfig>>& buttons) const
{
    for (const Configurable* child : _buttons.children())
        buttons.push_back(static_cast<const ConfigDocButton&>(*child).Get());
}

void ConfigDoc::GetInstruments(std::vector<NamedInstrument>& instruments, std::vector<std::string>& errors) const
{
    for (const Configurable* child : _instruments.children()) {
        const auto& entry = static_cast<const ConfigDocInstrument&>(*child);
        try {
            instruments.push_back(entry.Get());
        } catch (const NamedInstrument::Error& error) {
            errors.push_back("\"" + entry.Name().get() + "\": " + error.what());
        }
    }
}
