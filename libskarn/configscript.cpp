#include "libskarn/configscript.h"

#include <map>

std::string EncodeScriptText(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '\t': out += "&tab;"; break;
        case '\n': out += "&eol;"; break;
        case '&': out += "&amper;"; break;
        default: out += c;
        }
    }
    return out;
}

std::string DecodeScriptText(const std::string& text)
{
    static const std::map<std::string, char> entities{{"tab", '\t'}, {"eol", '\n'}, {"amper", '&'}};
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '&') {
            out += text[i];
            continue;
        }
        if (i + 1 == text.size())
            break;  // a lone "&" at the very end writes nothing
        const size_t end = text.find(';', i + 1);
        const std::string name = text.substr(i + 1, end == std::string::npos ? std::string::npos : end - i - 1);
        const auto found = entities.find(name);
        out += found == entities.end() ? '\0' : found->second;
        if (end == std::string::npos)
            break;
        i = end;
    }
    return out;
}

// --- script ---

ConfigScript::ConfigScript(const std::string& name) : ConfigurableComposite(name)
{
    add(_name);
    add(_code);
    add_attribute(_ondata);
    add_attribute(_onmatch);
}

ConfigScript& ConfigScript::operator=(const ConfigScript& other)
{
    if (this == &other)
        return *this;
    ConfigurableString* to[] = {&_name, &_code, &_ondata, &_onmatch};
    const ConfigurableString* from[] = {&other._name, &other._code, &other._ondata, &other._onmatch};
    for (size_t i = 0; i < 4; ++i) {
        to[i]->set(from[i]->get());
        to[i]->set_flags(from[i]->flags());
    }
    return *this;
}

std::string ConfigScript::Code() const { return DecodeScriptText(_code.get()); }

void ConfigScript::SetCode(const std::string& code) { _code.set(EncodeScriptText(code)); }

// --- scripts ---

ConfigScripts::ConfigScripts() : ConfigurableCompositeDynamic("scripts") {}

ConfigScript& ConfigScripts::AddScript(const std::string& name)
{
    auto* script = new ConfigScript("script");
    script->Name().set(name);
    add(*script);
    return *script;
}

void ConfigScripts::DelScript(const std::string& name)
{
    ConfigScript key("script");
    key.Name().set(name);
    remove(key);
}

void ConfigScripts::RenameScript(const std::string& old_name, const std::string& new_name)
{
    for (Configurable* child : children()) {
        auto& script = static_cast<ConfigScript&>(*child);
        if (script.Name().get() == old_name)
            script.Name().set(new_name);
    }
}

ConfigScript* ConfigScripts::LookupScript(const std::string& name)
{
    return const_cast<ConfigScript*>(static_cast<const ConfigScripts&>(*this).LookupScript(name));
}

const ConfigScript* ConfigScripts::LookupScript(const std::string& name) const
{
    for (const Configurable* child : children()) {
        const auto& script = static_cast<const ConfigScript&>(*child);
        if (script.Name().get() == name)
            return &script;
    }
    return nullptr;
}

// --- run ---

ConfigRun::ConfigRun() : ConfigurableComposite("run")
{
    add(_scripts);
    add(_runnow);
}

std::string ConfigRun::RunNow() const { return DecodeScriptText(_runnow.get()); }

void ConfigRun::SetRunNow(const std::string& text) { _runnow.set(EncodeScriptText(text)); }
