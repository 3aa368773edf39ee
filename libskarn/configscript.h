#pragma once
// Named scripts that an instrument holds and runs, and the text to run at once: the `run` section.
//
// A script has line ends and tabs, but a node's text travels on one line; so texts are kept in an
// escaped form with three entities: "&tab;", "&eol;" and "&amper;".

#include <string>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"

/// The escaped form of a text: tab, line feed and "&" become "&tab;", "&eol;" and "&amper;".
std::string EncodeScriptText(const std::string& text);
/// The plain form of an escaped text. An entity that names none of the three, the empty one
/// included, gives a NUL byte; an entity cut off by the end of the text still counts.
std::string DecodeScriptText(const std::string& text);

/// One script, tag `script` in the list: its name, escaped code, and the conditions on which it
/// runs as the attributes `ondata` and `onmatch`. The `code` child is reached through its codec,
/// Code() and SetCode().
class ConfigScript : public ConfigurableComposite {
public:
    explicit ConfigScript(const std::string& name);

    ConfigurableString& Name() { return _name; }
    const ConfigurableString& Name() const { return _name; }
    ConfigurableString& Ondata() { return _ondata; }
    ConfigurableString& Onmatch() { return _onmatch; }

    /// Takes values and flags of all four strings; keeps its own name.
    ConfigScript& operator=(const ConfigScript& other);

    /// The code, decoded.
    std::string Code() const;
    /// Encodes `code` and stores it.
    void SetCode(const std::string& code);

private:
    ConfigurableString _name{"name", ""};
    ConfigurableString _code{"code", ""};
    ConfigurableString _ondata{"ondata", ""};
    ConfigurableString _onmatch{"onmatch", ""};
};

/// The list of scripts, tag `scripts`, keyed by name. Names are compared byte for byte, and
/// nothing keeps two scripts from sharing one: lookups then find the first.
class ConfigScripts : public ConfigurableCompositeDynamic<ConfigScript> {
public:
    ConfigScripts();

    /// Appends a new script of that name and returns it.
    ConfigScript& AddScript(const std::string& name);
    /// Takes out and deletes every script of that name; marks no change.
    void DelScript(const std::string& name);
    /// Renames every script of `old_name`.
    void RenameScript(const std::string& old_name, const std::string& new_name);
    bool ScriptExists(const std::string& name) const { return LookupScript(name) != nullptr; }
    /// The first script of that name, or null.
    ConfigScript* LookupScript(const std::string& name);
    const ConfigScript* LookupScript(const std::string& name) const;

protected:
    ConfigScript* _create(const std::string& name) override { return new ConfigScript(name); }
    void _copy(ConfigScript& to, const ConfigScript& from) override { to = from; }
    bool _is_same(const ConfigScript& a, const ConfigScript& b) const override
    {
        return a.Name().get() == b.Name().get();
    }
};

/// The scripts and the escaped text to run at once, tag `run`. The `runnow` child is reached
/// through its codec, RunNow() and SetRunNow().
class ConfigRun : public ConfigurableComposite {
public:
    ConfigRun();

    ConfigScripts& Scripts() { return _scripts; }
    /// The text to run, decoded.
    std::string RunNow() const;
    /// Encodes `text` and stores it.
    void SetRunNow(const std::string& text);

private:
    ConfigScripts _scripts;
    ConfigurableString _runnow{"runnow", ""};
};
