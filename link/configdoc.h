#pragma once
// The description file beside the program: which service types the panel browses for, which
// buttons it offers, and the external commands behind those buttons, with a small text macro
// language ("$(name)") over the file's defines.
//
//     <config>
//       <title>Arvex Sondar</title>
//       <services><service>_arvex-tolvan._tcp</service></services>
//       <defines><define><name>ver</name><value>0.0.22</value></define></defines>
//       <buttons>
//         <button service="tolvan">
//           <caption>update firmware to $(ver)</caption>
//           <cmds><cmd description="Flash" nofail="true">cmd_flash $(ip)</cmd></cmds>
//         </button>
//       </buttons>
//     </config>

#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "link/namedinstrument.h"
#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"

/// Named texts, ordered by name, and the macros that refer to them.
class Defines {
public:
    /// Adds a define only if the name is new: an existing one, such as one read from the file, stays.
    void Add(const std::string& name, const std::string& value);

    /// `text` with every "$(name)" replaced by the value of name, or by nothing when the name is
    /// unknown. An unclosed "$(" takes the rest of the text as the name. The replacement starts
    /// again from the first "$(" each time, so values may bring in further macros; a value that
    /// refers to itself never ends.
    std::string Apply(std::string text) const;

    /// Replaces the macros inside the values: in name order, each value becomes Apply of itself
    /// with the defines as they stand at that moment.
    void ApplyDefines();

    const std::map<std::string, std::string>& Map() const { return _map; }

private:
    std::map<std::string, std::string> _map;
};

/// The defines as one line of JSON (an object of strings, in name order) and a line feed; no
/// defines at all give "null".
std::ostream& operator<<(std::ostream& out, const Defines& defines);

/// One external command of a button, independent of the document.
struct CmdConfig {
    std::string cmd;          ///< the command line; "Confirm: ..." and "cmd_..." are special
    std::string description;  ///< the heading shown before it runs
    int runtime = 0;          ///< carried over from the file; nothing depends on it
    bool nofail = false;      ///< a non-zero exit does not stop the sequence
    bool nooutput = false;    ///< the command's output is not shown
    int retrycount = 0;       ///< carried over from the file; nothing depends on it
    int retrywait = 0;        ///< carried over from the file; nothing depends on it

    /// Command and description each become the stripped form (StripNonSpaceWSOne) of their
    /// text with the macros applied: macros first, so line breaks of a value vanish.
    void ApplyDefines(const Defines& defines);
};

/// One button of the file, independent of the document.
struct ButtonConfig {
    std::string caption;  ///< a keyword such as "watch-tolvan", or the button's text
    std::string service;  ///< the type words for which the button applies; empty for all
    std::string version;  ///< carried over from the file; nothing depends on it
    std::string uboot;    ///< carried over from the file; nothing depends on it
    /// Whether the file gave the attribute (with a value: empty attribute text is never read);
    /// nothing depends on it.
    bool standalone = false;
    std::vector<std::shared_ptr<CmdConfig>> cmds;

    /// Runs defines.ApplyDefines(), then makes caption, service, version and uboot the macros
    /// applied to their stripped text (strip first, so line breaks of a value survive), then
    /// applies the defines to each command.
    void ApplyDefines(Defines& defines);
};

// --- the document ---

/// The list of service types, tag `services`; children of any tag.
class ConfigDocServices : public ConfigurableCompositeDynamic<ConfigurableString> {
public:
    ConfigDocServices() : ConfigurableCompositeDynamic("services") {}

protected:
    ConfigurableString* _create(const std::string& name) override { return new ConfigurableString(name, ""); }
    void _copy(ConfigurableString& to, const ConfigurableString& from) override;
    bool _is_same(const ConfigurableString& a, const ConfigurableString& b) const override
    {
        return a.get() == b.get();
    }
};

/// One define: the children `name` and `value`.
class ConfigDocDefine : public ConfigurableComposite {
public:
    explicit ConfigDocDefine(const std::string& tag);
    ConfigDocDefine& operator=(const ConfigDocDefine& other);

    ConfigurableString& Name() { return _name; }
    const ConfigurableString& Name() const { return _name; }
    const ConfigurableString& Value() const { return _value; }

private:
    ConfigurableString _name{"name", ""};
    ConfigurableString _value{"value", ""};
};

/// The list of defines, tag `defines`, keyed by name.
class ConfigDocDefines : public ConfigurableCompositeDynamic<ConfigDocDefine> {
public:
    ConfigDocDefines() : ConfigurableCompositeDynamic("defines") {}

protected:
    ConfigDocDefine* _create(const std::string& name) override { return new ConfigDocDefine(name); }
    void _copy(ConfigDocDefine& to, const ConfigDocDefine& from) override { to = from; }
    bool _is_same(const ConfigDocDefine& a, const ConfigDocDefine& b) const override
    {
        return a.Name().get() == b.Name().get();
    }
};

/// One command: its text is the command line, with the optional attributes `description`,
/// `runtime`, `nofail`, `nooutput`, `retrycount` and `retrywait`.
class ConfigDocCommand : public ConfigurableString {
public:
    explicit ConfigDocCommand(const std::string& tag);
    ConfigDocCommand& operator=(const ConfigDocCommand& other);

    /// The runtime form; an attribute the file did not give has its default.
    std::shared_ptr<CmdConfig> Get() const;

private:
    ConfigurableString _description{"description", ""};
    ConfigurableInteger _runtime{"runtime", 0};
    ConfigurableBool _nofail{"nofail", false};
    ConfigurableBool _nooutput{"nooutput", false};
    ConfigurableInteger _retrycount{"retrycount", 0};
    ConfigurableInteger _retrywait{"retrywait", 0};
};

/// The list of commands of a button, tag `cmds`.
class ConfigDocCommands : public ConfigurableCompositeDynamic<ConfigDocCommand> {
public:
    ConfigDocCommands() : ConfigurableCompositeDynamic("cmds") {}

protected:
    ConfigDocCommand* _create(const std::string& name) override { return new ConfigDocCommand(name); }
    void _copy(ConfigDocCommand& to, const ConfigDocCommand& from) override { to = from; }
    bool _is_same(const ConfigDocCommand& a, const ConfigDocCommand& b) const override
    {
        return a.get() == b.get();
    }
};

/// One button: the children `caption` and `cmds`, and the optional attributes `service`,
/// `version`, `uboot` and `standalone`.
class ConfigDocButton : public ConfigurableComposite {
public:
    explicit ConfigDocButton(const std::string& tag);
    ConfigDocButton& operator=(const ConfigDocButton& other);

    const ConfigurableString& Caption() const { return _caption; }
    /// The runtime form, with new command objects; an attribute the file did not give has its default.
    std::shared_ptr<ButtonConfig> Get() const;

private:
    ConfigurableString _caption{"caption", ""};
    ConfigDocCommands _cmds;
    ConfigurableString _service{"service", ""};
    ConfigurableString _version{"version", ""};
    ConfigurableString _uboot{"uboot", ""};
    ConfigurableString _standalone{"standalone", ""};
};

/// The list of buttons, tag `buttons`, keyed by caption.
class ConfigDocButtons : public ConfigurableCompositeDynamic<ConfigDocButton> {
public:
    ConfigDocButtons() : ConfigurableCompositeDynamic("buttons") {}

protected:
    ConfigDocButton* _create(const std::string& name) override { return new ConfigDocButton(name); }
    void _copy(ConfigDocButton& to, const ConfigDocButton& from) override { to = from; }
    bool _is_same(const ConfigDocButton& a, const ConfigDocButton& b) const override
    {
        return a.Caption().get() == b.Caption().get();
    }
};

/// One instrument named by hand: the children `name`, `model`, `address` and `port`.
class ConfigDocInstrument : public ConfigurableComposite {
public:
    explicit ConfigDocInstrument(const std::string& tag);
    ConfigDocInstrument& operator=(const ConfigDocInstrument& other);

    const ConfigurableString& Name() const { return _name; }
    /// The runtime form; throws NamedInstrument::Error for a malformed entry.
    NamedInstrument Get() const;

private:
    ConfigurableString _name{"name", ""};
    ConfigurableString _model{"model", ""};
    ConfigurableString _address{"address", ""};
    ConfigurableString _port{"port", ""};
};

/// The instruments named by hand, tag `instruments`.
class ConfigDocInstruments : public ConfigurableCompositeDynamic<ConfigDocInstrument> {
public:
    ConfigDocInstruments() : ConfigurableCompositeDynamic("instruments") {}

protected:
    ConfigDocInstrument* _create(const std::string& name) override { return new ConfigDocInstrument(name); }
    void _copy(ConfigDocInstrument& to, const ConfigDocInstrument& from) override { to = from; }
    bool _is_same(const ConfigDocInstrument& a, const ConfigDocInstrument& b) const override
    {
        return a.Name().get() == b.Name().get();
    }
};

/// The description file's document, tag `config`: `title`, `description`, `services`,
/// `defines`, `buttons`, and optionally `instruments`, for instruments that DNS-SD cannot reach:
///
///     <instruments>
///       <instrument><name>lab</name><model>tolvan</model><address>10.0.0.5</address></instrument>
///     </instruments>
///
/// (an empty or missing `port` is the model's usual one). Read it with configure(); the Get
/// functions build fresh runtime objects, so applying macros never rewrites the document.
class ConfigDoc : public ConfigurableComposite {
public:
    ConfigDoc();

    /// The main window's title.
    const std::string& Title() const { return _title.get(); }

    /// Appends the defines in file order; of two defines of one name the first wins.
    void GetDefines(Defines& defines) const;
    /// Appends the service types in file order.
    void GetServices(std::vector<std::string>& services) const;
    /// Appends the buttons in file order.
    void GetButtons(std::vector<std::shared_ptr<ButtonConfig>>& buttons) const;
    /// Appends the instruments named by hand in file order, leaving out a malformed entry and
    /// appending to `errors` one line for it: its name and what is wrong.
    void GetInstruments(std::vector<NamedInstrument>& instruments, std::vector<std::string>& errors) const;

private:
    ConfigurableString _title{"title", ""};
    ConfigurableString _description{"description", ""};
    ConfigDocServices _services;
    ConfigDocDefines _defines;
    ConfigDocButtons _buttons;
    ConfigDocInstruments _instruments;
};
