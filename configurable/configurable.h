#pragma once
// The node of every instrument document, and the query language it answers.
//
// A message is an XML fragment shaped like the document. Text inside an element sets that element
// unless it holds query entities, which the reply answers in place:
//
//     <L><a>&query_item;</a><b>2.1</b></L>     reads a, sets b
//
// Errors do not throw (unless the throw-on-error flag is set): they are written into the reply as
// <Error Param="name">message</Error> and the walk goes on with the next sibling. Only a failure at
// the root sets failbit on the input stream.
//
// Output is formatted for people unless the compact bit of the stream word is set
// (Configurable::set_compact), in which case a message is one line.

#include <cstdint>
#include <iosfwd>
#include <list>
#include <stdexcept>
#include <string>

class XMLParser;
class XMLWriter;
class Configurable;
class ConfigurableAttributes;
class ConfigurableComposite;
class ConfigurableMultipleChoice;
class ConfigurableFloat;
class ConfigurableDouble;
class ConfigurableInteger;
class ConfigurableBool;
class ConfigurableString;
class ConfigurableTimestamp;
class ConfigurableTime;
class ConfigurableTime_HourMinutes;
class ConfigurableDate;
class ConfigurableDate_YearMonth;

/// What a ConfigurableListener is told: the node concerned.
struct ConfigurableEvent {
    Configurable* configurable;
};

/// Observer of one node; each call comes right after the like-named hook of the node.
class ConfigurableListener {
public:
    virtual ~ConfigurableListener() = default;
    virtual void GotChanged(const ConfigurableEvent&) = 0;
    virtual void GotConfigureBegin(const ConfigurableEvent&) = 0;
    virtual void GotConfigureEnd(const ConfigurableEvent&) = 0;
    virtual void GotString(const ConfigurableEvent&, const std::string& text) = 0;
    virtual void GotWriteBegin(const ConfigurableEvent&) = 0;
    virtual void GotWriteEnd(const ConfigurableEvent&) = 0;
};

/// Walks a tree with knowledge of the leaf types. A full visit of a node is do_accept followed by
/// do_accept_attributes; attributes are entered only when VisitAttributesBegin returns true.
class ConfigurableVisitor {
public:
    virtual ~ConfigurableVisitor() = default;
    virtual void VisitConfigurable(Configurable&) {}
    virtual bool VisitAttributesBegin() { return false; }
    virtual void VisitAttributesEnd() {}
    virtual void VisitConfigurableCompositeBegin(ConfigurableComposite&) {}
    virtual void VisitConfigurableCompositeEnd(ConfigurableComposite&) {}
    virtual void VisitConfigurableMultipleChoice(ConfigurableMultipleChoice&) {}
    virtual void VisitConfigurableFloat(ConfigurableFloat&) {}
    virtual void VisitConfigurableDouble(ConfigurableDouble&) {}
    virtual void VisitConfigurableInteger(ConfigurableInteger&) {}
    virtual void VisitConfigurableBool(ConfigurableBool&) {}
    virtual void VisitConfigurableString(ConfigurableString&) {}
    virtual void VisitConfigurableTimestamp(ConfigurableTimestamp&) {}
    virtual void VisitConfigurableTime(ConfigurableTime&) {}
    virtual void VisitConfigurableTime_HourMinutes(ConfigurableTime_HourMinutes&) {}
    virtual void VisitConfigurableDate(ConfigurableDate&) {}
    virtual void VisitConfigurableDate_YearMonth(ConfigurableDate_YearMonth&) {}
};

class Configurable {
public:
    /// Thrown by _error in throw-on-error mode: XML error in item "name": message
    struct Error : std::runtime_error {
        using std::runtime_error::runtime_error;
    };

    enum Flag : uint32_t {
        CHANGED = 1,
        ENABLED = 2,          ///< a disabled child is skipped by reading, writing and defaulting
        PREPARED = 4,         ///< _prepare_to_read has run for the element being configured
        NO_TRANSLATION = 8,   ///< values go out byte for byte, not escaped
        THROW_ON_ERROR = 16,  ///< _error throws Configurable::Error instead of writing <Error>
        READ_BLOCKED = 32,    ///< _read and _read_doctype succeed and do nothing
        LOCKED = 64,          ///< reading reports "Configuration is locked" (and still reads)
    };

    explicit Configurable(const std::string& name, Configurable* parent = nullptr);
    Configurable(const Configurable&) = delete;
    Configurable& operator=(const Configurable&) = delete;
    virtual ~Configurable();

    /// Applies one message: walks `in` through the tree, sets values, writes answers and errors
    /// to `out`. Returns after the first element; failbit on `in` means the root failed.
    virtual std::istream& configure(std::istream& in, std::ostream& out);

    virtual void set_to_default() {}
    /// The concrete value parser: writes an error text to `err` and leaves failbit on `in` to fail.
    virtual void read(std::istream&, std::ostream&) {}
    /// The concrete value printer.
    virtual void write(std::ostream&) const {}
    /// Receives the text of a "{...}" value.
    virtual void read_doctype(std::istream&, std::ostream&) {}
    /// Prints the type text, without braces.
    virtual void write_doctype(std::ostream&) const {}

    virtual void do_accept(ConfigurableVisitor& v) { v.VisitConfigurable(*this); }
    virtual void do_accept_attributes(ConfigurableVisitor& v);

    // Output entry points; each returns its stream.
    std::ostream& configuration(std::ostream& out) const;           ///< the node in its full path, as "&query;"
    std::ostream& configuration_noparent(std::ostream& out) const;  ///< the node alone
    std::ostream& changed(std::ostream& out) const;                 ///< its changes in full path, or nothing
    std::ostream& doctype(std::ostream& out) const;                 ///< its type texts in full path
    std::ostream& build_query(std::ostream& out) const;             ///< the message that asks for this node

    bool has_changed() const { return _flags & CHANGED; }
    /// Attributes are members of the owner's class; the owner disables one to make it absent.
    void add_attribute(Configurable& attribute);
    void register_configurable_listener(ConfigurableListener* listener) { _listener = listener; }

    const std::string& name() const { return _name; }
    Configurable* parent() const { return _parent; }
    void set_parent(Configurable* parent) { _parent = parent; }
    ConfigurableAttributes* attributes() const { return _attributes; }
    uint32_t change_count() const { return _change_count; }

    uint32_t flags() const { return _flags; }
    void set_flags(uint32_t flags) { _flags = flags; }
    bool is_enabled() const { return _flags & ENABLED; }
    void set_enabled(bool on) { _set_flag(ENABLED, on); }
    void set_no_translation(bool on) { _set_flag(NO_TRANSLATION, on); }
    void set_read_blocked(bool on) { _set_flag(READ_BLOCKED, on); }

    /// The compact bit of a stream: messages written to it are one line.
    static bool is_compact(std::ios_base& stream);
    static void set_compact(std::ios_base& stream, bool compact);

    virtual void _set_changed(bool changed);
    virtual void _set_locked(bool locked);
    virtual void _set_throw_on_error(bool on);

protected:
    virtual void _on_changed() {}
    virtual void _on_configure_begin() {}
    virtual void _on_configure_end() {}
    virtual void _on_string(const std::string&) {}
    virtual void _on_write_begin() const {}
    virtual void _on_write_end() const {}

public:
    // The framework's walk; composites and attributes call these on one another.
    virtual bool _do_configure(XMLParser& parser, XMLWriter& writer);
    virtual bool _do_configure_start(const std::string& name, XMLParser& parser, XMLWriter& writer);
    virtual bool _do_configure_attribute(const std::string& name, XMLWriter& writer);
    virtual bool _do_configure_attribute_pair(const std::string& name, const std::string& value,
                                              XMLWriter& writer);
    virtual void _prepare_to_read();
    virtual bool _read(const std::string& text, XMLWriter& writer);
    virtual void _write(XMLWriter& writer) const;
    virtual bool _read_doctype(const std::string& text, XMLWriter& writer);
    virtual void _write_doctype(XMLWriter& writer) const;
    virtual void _write_changes(XMLWriter& writer) const;
    virtual void _write_context(XMLWriter& writer) const;
    virtual void _write_changes_context(XMLWriter& writer) const;
    virtual void _write_doctype_context(XMLWriter& writer) const;

    void _error(const std::string& message, XMLWriter& writer);
    bool _do_configure_string(const std::string& text, XMLWriter& writer, bool top_level);
    void _write_noparent(XMLWriter& writer) const;
    void _write_changes_noparent(XMLWriter& writer) const;
    void _write_doctype_noparent(XMLWriter& writer) const;
    void _write_header(XMLWriter& writer) const;
    void _write_footer(XMLWriter& writer) const;
    void _write_attr(XMLWriter& writer) const;
    void _write_attr_doctype(XMLWriter& writer) const;

    bool _is_prepared() const { return _flags & PREPARED; }
    bool _throws_on_error() const { return _flags & THROW_ON_ERROR; }

    /// Index of the stream word that holds the compact bit; -1 until first use.
    static int _xalloc_index;

private:
    void _set_flag(Flag flag, bool on) { _flags = on ? (_flags | flag) : (_flags & ~uint32_t(flag)); }
    void _write_text(const std::string& text, XMLWriter& writer) const;

    std::string _name;
    Configurable* _parent;
    uint32_t _flags = CHANGED | ENABLED;
    uint32_t _change_count = 0;
    ConfigurableAttributes* _attributes = nullptr;
    ConfigurableListener* _listener = nullptr;
};

/// The attributes of a node. Each attribute is itself a Configurable (usually a leaf) whose name is
/// the attribute's name; an attribute stands in the tag when it is enabled. The set of attributes
/// given in one tag replaces the set that was there.
class ConfigurableAttributes : public Configurable {
public:
    explicit ConfigurableAttributes(Configurable& owner);

    /// Appends an attribute (not owned) and hands it this object's throw-on-error state.
    void add(Configurable& attribute);
    void accept(ConfigurableVisitor& v);
    /// The first attribute of exactly that name, or null.
    Configurable* _find(const std::string& name) const;
    const std::list<Configurable*>& items() const { return _items; }

    void _set_changed(bool changed) override;
    void _set_locked(bool locked) override;
    void _set_throw_on_error(bool on) override;
    bool _do_configure_attribute(const std::string& name, XMLWriter& writer) override;
    bool _do_configure_attribute_pair(const std::string& name, const std::string& value,
                                      XMLWriter& writer) override;
    void _prepare_to_read() override;
    bool _read(const std::string& text, XMLWriter& writer) override;
    void _write(XMLWriter& writer) const override;
    bool _read_doctype(const std::string& text, XMLWriter& writer) override;
    void _write_doctype(XMLWriter& writer) const override;
    void _write_context(XMLWriter& writer) const override;
    void _write_changes_context(XMLWriter& writer) const override;
    void _write_doctype_context(XMLWriter& writer) const override;

private:
    std::list<Configurable*> _items;
    bool _in_pair = false;
    std::string _pair_name;
};
