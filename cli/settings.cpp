#include "cli/settings.h"

#include <algorithm>
#include <sstream>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "libskarn/configcommon.h"
#include "xml/xml_parser.h"
#include "xml/xml_writer.h"

namespace {

// Sections and leaves of a model node that are no settings of the user's.
const char* const kNotSettings[] = {"ver", "fpga", "dsp", "name", "serialnumber", "ipaddress", "cpld",
                                    "cal", "history", "cmd", "run", "factory"};

std::vector<std::string> split_path(const std::string& path)
{
    std::vector<std::string> parts;
    std::istringstream in(path);
    for (std::string part; std::getline(in, part, '/');)
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

bool is_leaf(const Configurable& node)
{
    return !dynamic_cast<const ConfigurableComposite*>(&node);
}

bool is_list(const Configurable& node)
{
    return dynamic_cast<const ConfigurableCompositeDynamicBase*>(&node);
}

// The enabled leaves below `node`, in document order; a dynamic list counts as one leaf, since
// a message replaces it whole.
void collect_leaves(Configurable& node, std::vector<Configurable*>& leaves)
{
    if (!node.is_enabled())
        return;
    if (is_leaf(node) || is_list(node)) {
        leaves.push_back(&node);
        return;
    }
    for (Configurable* child : static_cast<ConfigurableComposite&>(node).children())
        collect_leaves(*child, leaves);
}

// From the root down to `node`.
std::vector<const Configurable*> lineage(const Configurable& node)
{
    std::vector<const Configurable*> nodes;
    for (const Configurable* at = &node; at; at = at->parent())
        nodes.push_back(at);
    std::reverse(nodes.begin(), nodes.end());
    return nodes;
}

}  // namespace

Configurable& ModelOf(Configurable& doc)
{
    auto* root = dynamic_cast<ConfigurableComposite*>(&doc);
    if (!root || root->children().empty())
        throw SettingsError("the document has no model node");
    return *root->children().front();
}

Configurable& NodeAt(Configurable& doc, const std::string& path)
{
    Configurable* node = &ModelOf(doc);
    for (const std::string& part : split_path(path)) {
        auto* section = dynamic_cast<ConfigurableComposite*>(node);
        Configurable* child = section ? section->lookup(part) : nullptr;
        if (!child || !child->is_enabled())
            throw SettingsError("a " + ModelOf(doc).name() + " has no \"" + path + "\"");
        node = child;
    }
    return *node;
}

std::string PathOf(const Configurable& node)
{
    const std::vector<const Configurable*> nodes = lineage(node);
    std::string path;
    for (size_t i = 2; i < nodes.size(); ++i)
        path += (path.empty() ? "" : "/") + nodes[i]->name();
    return path;
}

std::string TextOf(const Configurable& leaf)
{
    std::ostringstream out;
    leaf.write(out);
    return out.str();
}

std::string SetMessage(Configurable& doc, const std::vector<std::pair<std::string, std::string>>& values)
{
    std::ostringstream out;
    XMLWriter writer(out, false);
    const Configurable& model = ModelOf(doc);
    writer.WriteStartElement(doc.name());
    writer.WriteStartElement(model.name());
    for (const auto& [path, text] : values) {
        const Configurable& leaf = NodeAt(doc, path);
        if (!is_leaf(leaf))
            throw SettingsError("\"" + path + "\" is a section, not a setting");
        const std::vector<const Configurable*> nodes = lineage(leaf);
        for (size_t i = 2; i < nodes.size(); ++i)
            writer.WriteStartElement(nodes[i]->name());
        writer.write_string(text, true);
        for (size_t i = nodes.size(); i-- > 2;)
            writer.WriteEndElement(nodes[i]->name());
    }
    writer.WriteEndElement(model.name());
    writer.WriteEndElement(doc.name());
    return out.str() + '\n';
}

std::vector<std::string> Refusals(const std::string& line)
{
    std::vector<std::string> refusals;
    std::istringstream in(line);
    XMLParser parser(in);
    std::string param, text;
    bool in_error = false;
    for (;;) {
        const XMLParser::TokenType token = parser.GetNextToken();
        if (token == XMLParser::END_DOC || token == XMLParser::ERROR)
            return refusals;
        const std::string name(parser.GetTokenString());
        if (token == XMLParser::START_ELEMENT && name == "Error") {
            in_error = true;
            param.clear();
            text.clear();
        } else if (in_error && token == XMLParser::ATTRIBUTE_VALUE_PAIR && name == "Param") {
            param = parser.GetTokenValue();
        } else if (in_error && token == XMLParser::STRING) {
            text += name;
        } else if (in_error && token == XMLParser::END_ELEMENT && name == "Error") {
            refusals.push_back(param + ": " + text);
            in_error = false;
        }
    }
}

SettingsOnly::SettingsOnly(Configurable& doc)
{
    auto hide = [this](Configurable& node) {
        if (node.is_enabled()) {
            node.set_enabled(false);
            _hidden.push_back(&node);
        }
    };
    auto& model = static_cast<ConfigurableComposite&>(ModelOf(doc));
    for (Configurable* child : model.children())
        if (std::find(std::begin(kNotSettings), std::end(kNotSettings), child->name()) != std::end(kNotSettings))
            hide(*child);
    std::vector<Configurable*> leaves;
    collect_leaves(model, leaves);
    for (Configurable* leaf : leaves) {
        auto* clock = dynamic_cast<ConfigCfgClock*>(leaf->parent());
        const bool running_clock = clock && (leaf == &clock->Time() || leaf == &clock->Date());
        if (running_clock || is_list(*leaf) || (leaf->flags() & Configurable::READ_BLOCKED) ||
            dynamic_cast<ConfigurableStringProxyReadOnly*>(leaf))
            hide(*leaf);
    }
}

SettingsOnly::~SettingsOnly()
{
    for (Configurable* node : _hidden)
        node->set_enabled(true);
}

std::string DocumentText(const Configurable& node)
{
    std::ostringstream out;
    node.configuration(out);
    const std::string text = out.str();
    return text.substr(std::min(text.size(), text.find_first_not_of('\n'))) + '\n';
}

std::string BackupText(Configurable& doc)
{
    SettingsOnly settings(doc);
    return DocumentText(doc);
}

std::string BackupModel(const std::string& text)
{
    std::istringstream in(text);
    XMLParser parser(in);
    std::vector<std::string> open;
    std::string model;
    for (;;) {
        const XMLParser::TokenType token = parser.GetNextToken();
        const std::string name(parser.GetTokenString());
        switch (token) {
        case XMLParser::START_ELEMENT:
            if (open.empty() && (name != "arvex" || !model.empty()))
                throw SettingsError("not a settings backup: it holds <" + name + "> where <arvex> should be alone");
            if (open.size() == 1 && model.empty())
                model = name;
            open.push_back(name);
            break;
        case XMLParser::END_ELEMENT:
            if (!open.empty())
                open.pop_back();
            break;
        case XMLParser::STRING:
            if (open.empty() && !name.empty())
                throw SettingsError("not a settings backup: text outside <arvex>");
            break;
        case XMLParser::ERROR:
            throw SettingsError("not a settings backup: " + (name.empty() ? std::string("it cannot be read") : name));
        case XMLParser::END_DOC:
            if (!open.empty())
                throw SettingsError("not a settings backup: it ends inside <" + open.back() + ">");
            if (model.empty())
                throw SettingsError("not a settings backup: no <arvex><MODEL>");
            return model;
        default:
            break;
        }
    }
}

std::vector<Change> ApplyBackup(Configurable& doc, const std::string& text)
{
    const std::string model = ModelOf(doc).name();
    const std::string backup_model = BackupModel(text);
    if (backup_model != model)
        throw SettingsError("a backup of a " + backup_model + ", not of a " + model);
    SettingsOnly settings(doc);
    std::vector<Configurable*> leaves;
    collect_leaves(ModelOf(doc), leaves);
    std::vector<std::string> before;
    for (const Configurable* leaf : leaves)
        before.push_back(TextOf(*leaf));

    doc._set_changed(false);
    std::istringstream in(text);
    std::ostringstream errors;
    doc.configure(in, errors);
    const std::vector<std::string> refused = Refusals(errors.str());
    if (!refused.empty())
        throw SettingsError("the backup holds a value that a " + model + " does not take: " + refused.front());

    // Some leaves count every value read as a change; only a different value is one here.
    std::vector<Change> changes;
    std::vector<Configurable*> changed;
    for (size_t i = 0; i < leaves.size(); ++i) {
        std::string after = TextOf(*leaves[i]);
        if (leaves[i]->has_changed() && after != before[i]) {
            changes.push_back({PathOf(*leaves[i]), before[i], std::move(after)});
            changed.push_back(leaves[i]);
        }
    }
    doc._set_changed(false);
    for (Configurable* leaf : changed)
        leaf->_set_changed(true);
    return changes;
}
