#include "configurable/configcomposite.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "xml/xml_parser.h"
#include "xml/xml_writer.h"

namespace {

// Names are too short to pay for a call to memcmp: they are compared in at most two overlapping
// words, the end first, since sibling names mostly differ there ("leaf1", "leaf2").
bool same_name(const std::string& a, const std::string& b)
{
    const std::size_t n = a.size();
    if (n != b.size())
        return false;
    const char* p = a.data();
    const char* q = b.data();
    if (n >= 8 && n <= 16)
        return std::memcmp(p + n - 8, q + n - 8, 8) == 0 && std::memcmp(p, q, 8) == 0;
    if (n >= 4 && n < 8)
        return std::memcmp(p + n - 4, q + n - 4, 4) == 0 && std::memcmp(p, q, 4) == 0;
    if (n < 4)
        return std::equal(p, p + n, q);
    return std::memcmp(p, q, n) == 0;
}

}  // namespace

ConfigurableComposite::ConfigurableComposite(const std::string& name, Configurable* parent)
    : Configurable(name, parent)
{
}

void ConfigurableComposite::add(Configurable& child)
{
    _children.push_back(&child);
    _children_changed();
    child.set_parent(this);
    child._set_throw_on_error(_throws_on_error());
}

Configurable* ConfigurableComposite::lookup(const std::string& name) const
{
    auto it = lookup_first(name);
    return it == _children.end() ? nullptr : *it;
}

bool ConfigurableComposite::_find_unique_names() const
{
    std::vector<const std::string*> names;
    names.reserve(_children.size());
    for (const Configurable* c : _children)
        names.push_back(&c->name());
    std::sort(names.begin(), names.end(), [](auto a, auto b) { return *a < *b; });
    const bool unique =
        std::adjacent_find(names.begin(), names.end(), [](auto a, auto b) { return *a == *b; }) == names.end();
    _unique_names = unique ? UNIQUE : SHARED;
    return unique;
}

ConfigurableComposite::Children::const_iterator ConfigurableComposite::lookup_first(const std::string& name) const
{
    if (_has_unique_names()) {
        // The only child of the name is the first one, wherever the search starts.
        auto it = _hint;
        for (size_t n = _children.size(); n > 0; --n, ++it) {
            if (it == _children.end())
                it = _children.begin();
            if (same_name((*it)->name(), name)) {
                _hint = std::next(it);
                return it;
            }
        }
        return _children.end();
    }
    auto it = _children.begin();
    while (it != _children.end() && !same_name((*it)->name(), name))
        ++it;
    return it;
}

ConfigurableComposite::Children::const_iterator
ConfigurableComposite::lookup_next(Children::const_iterator after, const std::string& name) const
{
    if (after != _children.end() && same_name((*after)->name(), name) && _has_unique_names())
        return _children.end();
    auto it = after;
    if (it != _children.end())
        ++it;
    while (it != _children.end() && !same_name((*it)->name(), name))
        ++it;
    return it;
}

void ConfigurableComposite::_delete_all()
{
    if (_children.empty())
        return;
    while (!_children.empty())
        _delete_back();
    _set_changed(true);
}

void ConfigurableComposite::_delete_back()
{
    delete _children.back();
    _children.pop_back();
    _children_changed();
}

void ConfigurableComposite::set_to_default()
{
    for (Configurable* c : _children)
        if (c->is_enabled())
            c->set_to_default();
}

void ConfigurableComposite::do_accept(ConfigurableVisitor& v)
{
    v.VisitConfigurableCompositeBegin(*this);
    for (Configurable* c : _children) {
        c->do_accept(v);
        c->do_accept_attributes(v);
    }
    v.VisitConfigurableCompositeEnd(*this);
}

void ConfigurableComposite::_set_changed(bool changed)
{
    Configurable::_set_changed(changed);
    if (!changed)
        for (Configurable* c : _children)
            c->_set_changed(false);
}

void ConfigurableComposite::_set_locked(bool locked)
{
    Configurable::_set_locked(locked);
    for (Configurable* c : _children)
        c->_set_locked(locked);
}

void ConfigurableComposite::_set_throw_on_error(bool on)
{
    Configurable::_set_throw_on_error(on);
    for (Configurable* c : _children)
        c->_set_throw_on_error(on);
}

bool ConfigurableComposite::_do_configure_start(const std::string& name, XMLParser& parser, XMLWriter& writer)
{
    auto it = lookup_first(name);
    parser.MarkCurrToken();
    if (it == _children.end()) {
        parser.RecoverFromError();  // unknown tags are dropped without a word
        return true;
    }
    // Every child of the name is configured from the same replayed tokens. A disabled child
    // skips on from wherever the parser stands; that order is relied upon.
    for (; it != _children.end(); it = lookup_next(it, name)) {
        Configurable* child = *it;
        if (child->is_enabled()) {
            parser.GotoMarkedToken();
            if (!child->_do_configure(parser, writer))
                parser.RecoverFromError();
        } else {
            parser.RecoverFromError();
        }
    }
    return true;
}

void ConfigurableComposite::_write(XMLWriter& writer) const
{
    for (const Configurable* c : _children)
        if (c->is_enabled())
            c->_write_noparent(writer);
}

void ConfigurableComposite::_write_doctype(XMLWriter& writer) const
{
    for (const Configurable* c : _children)
        if (c->is_enabled())
            c->_write_doctype_noparent(writer);
}

void ConfigurableComposite::_write_changes(XMLWriter& writer) const
{
    for (const Configurable* c : _children)
        if (c->is_enabled())
            c->_write_changes_noparent(writer);
}

// --- ConfigurableCompositeDynamicBase ---

ConfigurableCompositeDynamicBase::~ConfigurableCompositeDynamicBase()
{
    for (Configurable* c : _children)
        delete c;
}

ConfigurableCompositeDynamicBase&
ConfigurableCompositeDynamicBase::operator=(const ConfigurableCompositeDynamicBase& other)
{
    if (this == &other)
        return *this;
    set_flags(other.flags());
    if (_is_composite_same(other))
        return *this;
    while (!_children.empty())
        _delete_back();
    _set_changed(true);
    for (const Configurable* from : other._children) {
        Configurable* to = _create(from->name());
        _copy(*to, *from);
        add(*to);
    }
    return *this;
}

void ConfigurableCompositeDynamicBase::add(Configurable& child)
{
    ConfigurableComposite::add(child);
    _set_changed(true);
}

void ConfigurableCompositeDynamicBase::remove(const Configurable& key)
{
    for (auto it = _children.begin(); it != _children.end();) {
        if (_is_same(**it, key)) {
            delete *it;
            it = _children.erase(it);
            _children_changed();
        } else {
            ++it;
        }
    }
}

const Configurable* ConfigurableCompositeDynamicBase::_find_same(const Configurable& key) const
{
    for (const Configurable* c : _children)
        if (_is_same(*c, key))
            return c;
    return nullptr;
}

bool ConfigurableCompositeDynamicBase::_is_composite_same(const ConfigurableCompositeDynamicBase& other) const
{
    if (_children.size() != other._children.size())
        return false;
    auto b = other._children.begin();
    for (const Configurable* a : _children)
        if (!_is_same(*a, **b++))
            return false;
    return true;
}

bool ConfigurableCompositeDynamicBase::_do_configure(XMLParser& parser, XMLWriter& writer)
{
    _first_child_pending = true;
    return ConfigurableComposite::_do_configure(parser, writer);
}

bool ConfigurableCompositeDynamicBase::_do_configure_start(const std::string& name, XMLParser& parser,
                                                           XMLWriter& writer)
{
    if (_first_child_pending) {
        _delete_all();
        _first_child_pending = false;
    }
    Configurable* child = _create(name);
    add(*child);
    if (child->_do_configure(parser, writer))
        return true;
    _delete_back();
    parser.RecoverFromError();
    return true;
}

void ConfigurableCompositeDynamicBase::_write_changes(XMLWriter& writer) const
{
    for (const Configurable* c : _children)
        if (c->is_enabled())
            c->_write_noparent(writer);
}
