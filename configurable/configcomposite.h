#pragma once
// Nodes with children: the fixed sections of a document, and run-time lists of like children.

#include <list>
#include <string>

#include "configurable/configurable.h"

/// A node with a fixed set of named children, members of the subclass added in its constructor;
/// the order of add() is the order of all output. Children are not owned. Several children may
/// share a name: one element of that name in a message configures each of them.
class ConfigurableComposite : public Configurable {
public:
    using Children = std::list<Configurable*>;

    explicit ConfigurableComposite(const std::string& name, Configurable* parent = nullptr);

    /// Appends a child, becomes its parent and hands it the throw-on-error state. Marks nothing.
    virtual void add(Configurable& child);
    /// The first child of exactly that name, or null.
    Configurable* lookup(const std::string& name) const;
    /// Iteration over all children of one name; both return children().end() when there is none.
    Children::const_iterator lookup_first(const std::string& name) const;
    Children::const_iterator lookup_next(Children::const_iterator after, const std::string& name) const;
    const Children& children() const { return _children; }

    /// Deletes every child (for lists of heap children), marking a change if there were any.
    void _delete_all();
    /// Deletes the last child, with no change mark.
    void _delete_back();

    void set_to_default() override;
    void do_accept(ConfigurableVisitor& v) override;
    void _set_changed(bool changed) override;
    void _set_locked(bool locked) override;
    void _set_throw_on_error(bool on) override;
    bool _do_configure_start(const std::string& name, XMLParser& parser, XMLWriter& writer) override;
    void _write(XMLWriter& writer) const override;
    void _write_doctype(XMLWriter& writer) const override;
    void _write_changes(XMLWriter& writer) const override;

protected:
    Children _children;

    /// To be called whenever the list of children changes.
    void _children_changed()
    {
        _unique_names = UNKNOWN;
        _hint = _children.end();
    }

private:
    // Lookup helps, dropped whenever the children change: whether every child has a name of its
    // own, and where the last lookup stopped, since messages name children in their order.
    enum : int8_t { UNKNOWN = -1, SHARED = 0, UNIQUE = 1 };
    mutable int8_t _unique_names = UNKNOWN;
    mutable Children::const_iterator _hint = _children.end();
    bool _has_unique_names() const { return _unique_names == UNKNOWN ? _find_unique_names() : _unique_names == UNIQUE; }
    bool _find_unique_names() const;
};

/// A list of like children created by incoming XML and owned by the list. Every message that
/// carries child elements for the list replaces the whole list with them; a bad child is dropped.
/// The unit of change is the whole list.
class ConfigurableCompositeDynamicBase : public ConfigurableComposite {
public:
    using ConfigurableComposite::ConfigurableComposite;
    ~ConfigurableCompositeDynamicBase() override;

    /// Takes over the other list's flags; replaces the children by copies unless they are the same.
    ConfigurableCompositeDynamicBase& operator=(const ConfigurableCompositeDynamicBase& other);

    /// Takes ownership of a heap child and marks the list changed.
    void add(Configurable& child) override;
    /// Deletes all children the same as `key` by the list's key; marks no change.
    void remove(const Configurable& key);
    /// Deletes all children, marking a change if there were any.
    void clear() { _delete_all(); }
    /// Same length, and _is_same holds pair by pair.
    bool _is_composite_same(const ConfigurableCompositeDynamicBase& other) const;

    void set_to_default() override { _delete_all(); }
    bool _do_configure(XMLParser& parser, XMLWriter& writer) override;
    bool _do_configure_start(const std::string& name, XMLParser& parser, XMLWriter& writer) override;
    void _write_changes(XMLWriter& writer) const override;

protected:
    const Configurable* _find_same(const Configurable& key) const;
    /// A new child of that name, on the heap.
    virtual Configurable* _create(const std::string& name) = 0;
    /// Copies the flags word and the values of one child to another.
    virtual void _copy(Configurable& to, const Configurable& from) = 0;
    /// Whether two children are the same by the list's key.
    virtual bool _is_same(const Configurable& a, const Configurable& b) const = 0;

private:
    bool _first_child_pending = false;
};

/// A dynamic list of children of type T. Each list supplies how a child is made, copied and keyed.
template <class T>
class ConfigurableCompositeDynamic : public ConfigurableCompositeDynamicBase {
public:
    using ConfigurableCompositeDynamicBase::ConfigurableCompositeDynamicBase;

    ConfigurableCompositeDynamic& operator=(const ConfigurableCompositeDynamic& other)
    {
        ConfigurableCompositeDynamicBase::operator=(other);
        return *this;
    }

    /// The first child that is the same as `key`, or null.
    T* find(const T& key) const { return const_cast<T*>(static_cast<const T*>(_find_same(key))); }

protected:
    T* _create(const std::string& name) override = 0;
    virtual void _copy(T& to, const T& from) = 0;
    virtual bool _is_same(const T& a, const T& b) const = 0;

private:
    void _copy(Configurable& to, const Configurable& from) final
    {
        _copy(static_cast<T&>(to), static_cast<const T&>(from));
    }
    bool _is_same(const Configurable& a, const Configurable& b) const final
    {
        return _is_same(static_cast<const T&>(a), static_cast<const T&>(b));
    }
};
