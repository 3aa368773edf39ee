#pragma once
// The shape every instrument document shares: <arvex><model>...</model></arvex>.
//
// The tags of a document are the instrument's wire vocabulary. Accessors follow the tags, one per
// child, and return the node: doc.Conf().Cfg().Clock().Zone().get_str().

#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <string>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"

/// A model node: it opens with ack, ver, [fpga, dsp], name, serialnumber and ipaddress, then holds
/// the model's sections, and closes with error. ack and error are disabled: they are never printed
/// with the node, and arriving ones are skipped without being stored.
class ConfigModel : public ConfigurableComposite {
public:
    ConfigurableBool& Ack() { return _ack; }
    const ConfigurableBool& Ack() const { return _ack; }
    ConfigurableString& Ver() { return _ver; }
    ConfigurableString& Fpga() { return _fpga; }
    ConfigurableString& Dsp() { return _dsp; }
    ConfigurableString& Name() { return _name; }
    /// A read-only view of the factory section's serial number.
    ConfigurableStringProxyReadOnly& Serialnumber() { return *_serialnumber; }
    ConfigurableString& Ipaddress() { return _ipaddress; }
    ConfigurableString& Error() { return _error; }

protected:
    explicit ConfigModel(const std::string& tag) : ConfigurableComposite(tag) {}

    /// Adds the opening nodes; fpga and dsp only where the model has them.
    void _add_opening_nodes(const ConfigurableString& factory_serialnumber, bool with_fpga_and_dsp = false);
    /// Adds error, after the model's sections.
    void _add_closing_nodes() { add(_error); }

private:
    ConfigurableBool _ack{"ack", true};
    ConfigurableString _ver{"ver", ""};
    ConfigurableString _fpga{"fpga", ""};
    ConfigurableString _dsp{"dsp", ""};
    ConfigurableString _name{"name", ""};
    std::unique_ptr<ConfigurableStringProxyReadOnly> _serialnumber;
    ConfigurableString _ipaddress{"ipaddress", ""};
    ConfigurableString _error{"error", ""};
};

/// A document: the root "arvex" holding one model node.
template <class Model>
class Document : public ConfigurableComposite {
public:
    Document() : ConfigurableComposite("arvex") { add(_conf); }

    Model& Conf() { return _conf; }
    const Model& Conf() const { return _conf; }

    /// Prints the ack node in full context: <arvex><tolvan><ack>true</ack></tolvan></arvex>
    void Ack(std::ostream& out) const { _conf.Ack().configuration(out); }
    /// Sets the error text and prints the error node in full context.
    void Error(std::ostream& out, const std::string& text)
    {
        _conf.Error().set(text);
        _conf.Error().configuration(out);
    }

private:
    Model _conf;
};

/// A document that tells its listeners, in the order of their names, when a message changed it:
/// the instrument's side of the protocol. The model node supplies `ResetCommands()`, which sets
/// its command bools back to false before each message.
template <class Model>
class ListenedDocument : public Document<Model> {
public:
    void AddListener(const std::string& name, ConfigurableListener* listener) { _listeners[name] = listener; }
    void RemoveListener(const std::string& name) { _listeners.erase(name); }

    /// If the document has changed, hands every listener an event whose source is the document.
    void NotifyListeners()
    {
        if (!this->has_changed())
            return;
        const ConfigurableEvent event{this};
        for (auto& entry : _listeners)
            entry.second->GotChanged(event);
    }

    /// Serves one message: commands back to false, configure, then notify if anything changed.
    std::istream& configure_and_send_events(std::istream& in, std::ostream& out)
    {
        this->Conf().ResetCommands();
        this->configure(in, out);
        NotifyListeners();
        return in;
    }

private:
    std::map<std::string, ConfigurableListener*> _listeners;
};
