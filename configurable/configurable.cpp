#include "configurable/configurable.h"

#include <cstring>
#include <memory>
#include <sstream>
#include <vector>

#include "xml/xml_parser.h"
#include "xml/xml_writer.h"

int Configurable::_xalloc_index = -1;

namespace {

// An input buffer over text that it does not own. It seeks, since a read may start over.
class TextBuf : public std::streambuf {
public:
    void set(const std::string& text)
    {
        char* p = const_cast<char*>(text.data());
        setg(p, p, p + text.size());
    }

protected:
    // All of the text is in the get area: once it is read, nothing follows.
    std::streamsize showmanyc() override { return -1; }
    pos_type seekoff(off_type off, std::ios_base::seekdir dir, std::ios_base::openmode which) override
    {
        const off_type size = egptr() - eback();
        const off_type base = dir == std::ios_base::beg ? 0 : dir == std::ios_base::cur ? gptr() - eback() : size;
        if (!(which & std::ios_base::in) || base + off < 0 || base + off > size)
            return pos_type(off_type(-1));
        setg(eback(), eback() + base + off, egptr());
        return pos_type(base + off);
    }
    pos_type seekpos(pos_type pos, std::ios_base::openmode which) override
    {
        return seekoff(off_type(pos), std::ios_base::beg, which);
    }
};

// An output buffer that appends to a string, which the caller reads in place.
class SinkBuf : public std::streambuf {
public:
    std::string text;

protected:
    int_type overflow(int_type c) override
    {
        if (!traits_type::eq_int_type(c, traits_type::eof()))
            text += traits_type::to_char_type(c);
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char* s, std::streamsize n) override
    {
        text.append(s, static_cast<std::size_t>(n));
        return n;
    }
};

// Making a stream costs more than reading or printing a value, and a message reads one value
// per leaf: streams are kept for reuse, one per nesting depth, since a read can reach another
// tree through a listener or an overridden set.
template <class Stream, class Buf>
class StreamLease {
public:
    StreamLease()
    {
        if (_depth == _pool.size())
            _pool.push_back(std::make_unique<Slot>());
        _slot = _pool[_depth++].get();
        Stream& s = _slot->stream;
        if (!s.good())
            s.clear();
        s.flags(std::ios_base::skipws | std::ios_base::dec);
        s.precision(6);
        s.width(0);
        s.fill(' ');
    }
    ~StreamLease() { --_depth; }
    StreamLease(const StreamLease&) = delete;
    StreamLease& operator=(const StreamLease&) = delete;

    Stream& operator*() const { return _slot->stream; }
    Stream* operator->() const { return &_slot->stream; }
    Buf& buf() const { return _slot->buf; }

private:
    struct Slot {
        Buf buf;
        Stream stream{&buf};
    };
    Slot* _slot;
    static thread_local std::vector<std::unique_ptr<Slot>> _pool;
    static thread_local size_t _depth;
};

template <class Stream, class Buf>
thread_local std::vector<std::unique_ptr<typename StreamLease<Stream, Buf>::Slot>> StreamLease<Stream, Buf>::_pool;
template <class Stream, class Buf>
thread_local size_t StreamLease<Stream, Buf>::_depth = 0;

// Reads `text`.
class InLease : public StreamLease<std::istream, TextBuf> {
public:
    explicit InLease(const std::string& text) { buf().set(text); }
};

// Collects what is written; text() is empty also when the stream failed, as tellp() would say.
class OutLease : public StreamLease<std::ostream, SinkBuf> {
public:
    OutLease() { buf().text.clear(); }
    bool empty() const { return (**this).fail() || buf().text.empty(); }
    const std::string& text() const { return buf().text; }
};

// Reads text with a node's read or read_doctype, reporting what it wrote as an error.
template <class Read>
bool read_reporting(Configurable& node, const std::string& text, XMLWriter& writer, Read read)
{
    InLease in(text);
    OutLease err;
    read(*in, *err);
    if (!err.empty())
        node._error(err.text(), writer);
    return !in->fail();
}

int compact_index()
{
    if (Configurable::_xalloc_index < 0)
        Configurable::_xalloc_index = std::ios_base::xalloc();
    return Configurable::_xalloc_index;
}

}  // namespace

bool Configurable::is_compact(std::ios_base& stream)
{
    return stream.iword(compact_index()) & 1;
}

void Configurable::set_compact(std::ios_base& stream, bool compact)
{
    long& word = stream.iword(compact_index());
    word = compact ? (word | 1) : (word & ~1L);
}

Configurable::Configurable(const std::string& name, Configurable* parent)
    : _name(name), _parent(parent)
{
}

Configurable::~Configurable()
{
    delete _attributes;
}

void Configurable::add_attribute(Configurable& attribute)
{
    if (!_attributes) {
        _attributes = new ConfigurableAttributes(*this);
        _attributes->_set_throw_on_error(_throws_on_error());
    }
    _attributes->add(attribute);
}

void Configurable::do_accept_attributes(ConfigurableVisitor& v)
{
    if (_attributes)
        _attributes->accept(v);
}

std::istream& Configurable::configure(std::istream& in, std::ostream& out)
{
    XMLParser parser(in);
    XMLWriter writer(out, !is_compact(out));
    for (;;) {
        switch (parser.GetNextToken()) {
        case XMLParser::STRING:
            if (!_do_configure_string(std::string(parser.GetTokenString()), writer, true))
                in.setstate(std::ios_base::failbit);
            else
                continue;
            return in;
        case XMLParser::ERROR:
            in.setstate(std::ios_base::failbit);
            return in;
        case XMLParser::END_DOC:
            return in;
        case XMLParser::START_ELEMENT:
            if (parser.GetTokenString() == _name) {
                if (!_do_configure(parser, writer))
                    in.setstate(std::ios_base::failbit);
            } else {
                _error("Invalid start element: " + std::string(parser.GetTokenString()), writer);
                in.setstate(std::ios_base::failbit);
            }
            return in;
        default:
            continue;
        }
    }
}

std::ostream& Configurable::configuration(std::ostream& out) const
{
    XMLWriter writer(out, !is_compact(out));
    _write_context(writer);
    return out;
}

std::ostream& Configurable::configuration_noparent(std::ostream& out) const
{
    XMLWriter writer(out, !is_compact(out));
    _write_noparent(writer);
    return out;
}

std::ostream& Configurable::changed(std::ostream& out) const
{
    if (has_changed()) {
        XMLWriter writer(out, !is_compact(out));
        _write_changes_context(writer);
    }
    return out;
}

std::ostream& Configurable::doctype(std::ostream& out) const
{
    XMLWriter writer(out, !is_compact(out));
    _write_doctype_context(writer);
    return out;
}

std::ostream& Configurable::build_query(std::ostream& out) const
{
    XMLWriter writer(out, !is_compact(out));
    _write_header(writer);
    writer.write_string("&query;", true);
    _write_footer(writer);
    return out;
}

void Configurable::_set_changed(bool changed)
{
    if (changed) {
        _flags |= CHANGED;
        ++_change_count;
        _on_changed();
        if (_listener)
            _listener->GotChanged({this});
        if (_parent)
            _parent->_set_changed(true);
    } else {
        _flags &= ~uint32_t(CHANGED);
        if (_attributes)
            _attributes->_set_changed(false);
    }
}

void Configurable::_set_locked(bool locked)
{
    _set_flag(LOCKED, locked);
    if (_attributes)
        _attributes->_set_locked(locked);
}

void Configurable::_set_throw_on_error(bool on)
{
    _set_flag(THROW_ON_ERROR, on);
    if (_attributes)
        _attributes->_set_throw_on_error(on);
}

void Configurable::_error(const std::string& message, XMLWriter& writer)
{
    if (_throws_on_error())
        throw Error("XML error in item \"" + _name + "\": " + message);
    writer.WriteStartElement("Error");
    writer.WriteAttributeValuePair("Param", _name);
    writer.write_string(message, true);
    writer.WriteEndElement("Error");
}

bool Configurable::_do_configure_string(const std::string& text, XMLWriter& writer, bool top_level)
{
    // Most text is a value and holds no query: it is then one STRING or DOCTYPE token, read here
    // without taking it apart.
    if (!std::memchr(text.data(), '&', text.size()) || text.find("&query") == std::string::npos) {
        if (top_level || text.empty())
            return true;
        if (text.size() >= 2 && text.front() == '{' && text.back() == '}')
            return _read_doctype(text.substr(1, text.size() - 2), writer);
        return _read(text, writer);
    }
    XMLQueryStringParser tokens(text);
    for (;;) {
        switch (tokens.GetNextToken()) {
        case XMLQueryStringParser::QUERY:
            if (top_level)
                _write_noparent(writer);
            else
                _write(writer);
            break;
        case XMLQueryStringParser::QUERY_CONTEXT:
            _write_context(writer);
            break;
        case XMLQueryStringParser::QUERY_CHANGES:
            if (top_level)
                _write_changes_noparent(writer);
            else
                _write_changes(writer);
            break;
        case XMLQueryStringParser::QUERY_CHANGES_CONTEXT:
            _write_changes_context(writer);
            break;
        case XMLQueryStringParser::QUERY_DOCTYPE:
            if (top_level)
                _write_doctype_noparent(writer);
            else
                _write_doctype(writer);
            break;
        case XMLQueryStringParser::QUERY_DOCTYPE_CONTEXT:
            _write_doctype_context(writer);
            break;
        case XMLQueryStringParser::STRING:
            if (!top_level && !_read(tokens.GetTokenValue(), writer))
                return false;
            break;
        case XMLQueryStringParser::DOCTYPE:
            if (!top_level && !_read_doctype(tokens.GetTokenValue(), writer))
                return false;
            break;
        case XMLQueryStringParser::ERROR:
            _error("Invalid query: " + tokens.GetTokenValue(), writer);
            break;
        case XMLQueryStringParser::END_STRING:
            return true;
        default:
            break;
        }
    }
}

bool Configurable::_do_configure(XMLParser& parser, XMLWriter& writer)
{
    _flags &= ~uint32_t(PREPARED);
    _on_configure_begin();
    if (_listener)
        _listener->GotConfigureBegin({this});
    for (;;) {
        switch (parser.GetNextToken()) {
        case XMLParser::START_ELEMENT:
            if (!_do_configure_start(std::string(parser.GetTokenString()), parser, writer))
                return false;
            break;
        case XMLParser::ATTRIBUTE:
            if (!_do_configure_attribute(std::string(parser.GetTokenString()), writer))
                return false;
            break;
        case XMLParser::ATTRIBUTE_VALUE_PAIR:
            if (!_do_configure_attribute_pair(std::string(parser.GetTokenString()),
                                              std::string(parser.GetTokenValue()), writer))
                return false;
            break;
        case XMLParser::STRING: {
            const std::string text(parser.GetTokenString());
            _on_string(text);
            if (_listener)
                _listener->GotString({this}, text);
            if (!_do_configure_string(text, writer, false))
                return false;
            break;
        }
        case XMLParser::END_ELEMENT:
            if (parser.GetTokenString() != _name) {
                _error("Invalid End Element: " + std::string(parser.GetTokenString()), writer);
                return false;
            }
            _on_configure_end();
            if (_listener)
                _listener->GotConfigureEnd({this});
            return true;
        case XMLParser::END_DOC:
            return true;  // an unfinished element is accepted
        case XMLParser::ERROR:
            return false;
        default:
            break;
        }
    }
}

bool Configurable::_do_configure_start(const std::string& name, XMLParser&, XMLWriter& writer)
{
    _error("Invalid configuration tag: " + name, writer);
    return false;
}

bool Configurable::_do_configure_attribute(const std::string& name, XMLWriter& writer)
{
    if (!_attributes) {
        _error("This item has no attributes", writer);
        return false;
    }
    return _attributes->_do_configure_attribute(name, writer);
}

bool Configurable::_do_configure_attribute_pair(const std::string& name, const std::string& value,
                                                XMLWriter& writer)
{
    if (!_attributes) {
        _error("This item has no attributes", writer);
        return false;
    }
    return _attributes->_do_configure_attribute_pair(name, value, writer);
}

void Configurable::_prepare_to_read()
{
    _flags |= PREPARED;
    if (_attributes)
        _attributes->_prepare_to_read();
}

bool Configurable::_read(const std::string& text, XMLWriter& writer)
{
    // A locked node reports, and reads all the same.
    if (_flags & LOCKED)
        _error("Configuration is locked", writer);
    if (_flags & READ_BLOCKED)
        return true;
    if (!_is_prepared())
        _prepare_to_read();
    return read_reporting(*this, text, writer, [this](std::istream& in, std::ostream& err) { read(in, err); });
}

bool Configurable::_read_doctype(const std::string& text, XMLWriter& writer)
{
    if (_flags & LOCKED)
        _error("Configuration is locked", writer);
    if (_flags & READ_BLOCKED)
        return true;
    return read_reporting(*this, text, writer,
                          [this](std::istream& in, std::ostream& err) { read_doctype(in, err); });
}

void Configurable::_write_text(const std::string& text, XMLWriter& writer) const
{
    writer.write_string(text, !(_flags & NO_TRANSLATION));
}

void Configurable::_write(XMLWriter& writer) const
{
    OutLease out;
    write(*out);
    _write_text(out.text(), writer);
}

void Configurable::_write_doctype(XMLWriter& writer) const
{
    OutLease out;
    write_doctype(*out);
    _write_text("{" + out.text() + "}", writer);
}

void Configurable::_write_changes(XMLWriter& writer) const
{
    if (has_changed())
        _write(writer);
}

void Configurable::_write_attr(XMLWriter& writer) const
{
    if (_attributes)
        _attributes->_write(writer);
}

void Configurable::_write_attr_doctype(XMLWriter& writer) const
{
    if (_attributes)
        _attributes->_write_doctype(writer);
}

void Configurable::_write_noparent(XMLWriter& writer) const
{
    writer.WriteStartElement(_name);
    _on_write_begin();
    if (_listener)
        _listener->GotWriteBegin({const_cast<Configurable*>(this)});
    _write_attr(writer);
    _write(writer);
    writer.WriteEndElement(_name);
    _on_write_end();
    if (_listener)
        _listener->GotWriteEnd({const_cast<Configurable*>(this)});
}

void Configurable::_write_changes_noparent(XMLWriter& writer) const
{
    if (!has_changed())
        return;
    writer.WriteStartElement(_name);
    _on_write_begin();
    if (_listener)
        _listener->GotWriteBegin({const_cast<Configurable*>(this)});
    _write_attr(writer);
    _write_changes(writer);
    writer.WriteEndElement(_name);
    _on_write_end();
    if (_listener)
        _listener->GotWriteEnd({const_cast<Configurable*>(this)});
}

void Configurable::_write_doctype_noparent(XMLWriter& writer) const
{
    writer.WriteStartElement(_name);
    _write_attr_doctype(writer);
    _write_doctype(writer);
    writer.WriteEndElement(_name);
}

void Configurable::_write_header(XMLWriter& writer) const
{
    if (_parent)
        _parent->_write_header(writer);
    writer.WriteStartElement(_name);
    _on_write_begin();
    if (_listener)
        _listener->GotWriteBegin({const_cast<Configurable*>(this)});
}

void Configurable::_write_footer(XMLWriter& writer) const
{
    writer.WriteEndElement(_name);
    _on_write_end();
    if (_listener)
        _listener->GotWriteEnd({const_cast<Configurable*>(this)});
    if (_parent)
        _parent->_write_footer(writer);
}

void Configurable::_write_context(XMLWriter& writer) const
{
    _write_header(writer);
    _write_attr(writer);
    _write(writer);
    _write_footer(writer);
}

void Configurable::_write_changes_context(XMLWriter& writer) const
{
    if (!has_changed())
        return;
    _write_header(writer);
    _write_attr(writer);
    _write_changes(writer);
    _write_footer(writer);
}

void Configurable::_write_doctype_context(XMLWriter& writer) const
{
    _write_header(writer);
    _write_attr_doctype(writer);
    _write_doctype(writer);
    _write_footer(writer);
}

// --- ConfigurableAttributes ---

ConfigurableAttributes::ConfigurableAttributes(Configurable& owner) : Configurable("attr", &owner) {}

void ConfigurableAttributes::add(Configurable& attribute)
{
    _items.push_back(&attribute);
    attribute.set_parent(this);
    attribute._set_throw_on_error(_throws_on_error());
}

void ConfigurableAttributes::accept(ConfigurableVisitor& v)
{
    if (v.VisitAttributesBegin()) {
        for (Configurable* a : _items) {
            a->do_accept(v);
            a->do_accept_attributes(v);
        }
    }
    v.VisitAttributesEnd();
}

Configurable* ConfigurableAttributes::_find(const std::string& name) const
{
    for (Configurable* a : _items)
        if (a->name() == name)
            return a;
    return nullptr;
}

void ConfigurableAttributes::_set_changed(bool changed)
{
    Configurable::_set_changed(changed);
    if (!changed)
        for (Configurable* a : _items)
            a->_set_changed(false);
}

void ConfigurableAttributes::_set_locked(bool locked)
{
    Configurable::_set_locked(locked);
    for (Configurable* a : _items)
        a->_set_locked(locked);
}

void ConfigurableAttributes::_set_throw_on_error(bool on)
{
    Configurable::_set_throw_on_error(on);
    for (Configurable* a : _items)
        a->_set_throw_on_error(on);
}

bool ConfigurableAttributes::_do_configure_attribute(const std::string& name, XMLWriter& writer)
{
    // A query entity in attribute position arrives here as a name.
    return _do_configure_string(name, writer, false);
}

bool ConfigurableAttributes::_do_configure_attribute_pair(const std::string& name,
                                                          const std::string& value,
                                                          XMLWriter& writer)
{
    struct PairScope {
        ConfigurableAttributes& self;
        PairScope(ConfigurableAttributes& s, const std::string& name) : self(s)
        {
            self._in_pair = true;
            self._pair_name = name;
        }
        ~PairScope() { self._in_pair = false; }
    } scope(*this, name);
    return _do_configure_string(value, writer, false);
}

void ConfigurableAttributes::_prepare_to_read()
{
    for (Configurable* a : _items) {
        if (a->is_enabled()) {
            a->set_enabled(false);
            a->_set_changed(true);
        }
    }
}

bool ConfigurableAttributes::_read(const std::string& text, XMLWriter& writer)
{
    Configurable* attribute = _find(_in_pair ? _pair_name : text);
    if (!attribute)
        return true;  // unknown attributes are ignored
    Configurable* owner = parent();
    if (!owner->_is_prepared())
        owner->_prepare_to_read();
    if (!attribute->is_enabled()) {
        attribute->set_enabled(true);
        attribute->_set_changed(true);
    }
    return _in_pair ? attribute->_read(text, writer) : true;
}

void ConfigurableAttributes::_write(XMLWriter& writer) const
{
    if (_in_pair) {
        const Configurable* attribute = _find(_pair_name);
        if (!attribute)
            return;
        if (!attribute->is_enabled()) {
            writer.write_string("&disabled;", true);
            return;
        }
        OutLease out;
        attribute->write(*out);
        if (!*out)
            return;
        writer.write_string(!out.empty() ? out.text() : "&enabled;", true);
        return;
    }
    for (const Configurable* a : _items) {
        if (!a->is_enabled())
            continue;
        OutLease out;
        a->write(*out);
        if (!out.empty())
            writer.WriteAttributeValuePair(a->name(), out.text());
        else
            writer.WriteAttribute(a->name());
    }
}

bool ConfigurableAttributes::_read_doctype(const std::string& text, XMLWriter& writer)
{
    Configurable* attribute = _in_pair ? _find(_pair_name) : nullptr;
    return attribute ? attribute->_read_doctype(text, writer) : true;
}

void ConfigurableAttributes::_write_doctype(XMLWriter& writer) const
{
    if (_in_pair) {
        const Configurable* attribute = _find(_pair_name);
        if (!attribute)
            return;
        OutLease out;
        attribute->write_doctype(*out);
        if (!out.empty())
            writer.write_string("{" + out.text() + "}", true);
        return;
    }
    for (const Configurable* a : _items) {
        OutLease out;
        a->write_doctype(*out);
        if (!out.empty())
            writer.WriteAttributeValuePair(a->name(), "{" + out.text() + "}");
        else
            writer.WriteAttribute(a->name());
    }
}

void ConfigurableAttributes::_write_context(XMLWriter& writer) const
{
    parent()->_write_context(writer);
}

void ConfigurableAttributes::_write_changes_context(XMLWriter& writer) const
{
    parent()->_write_changes_context(writer);
}

void ConfigurableAttributes::_write_doctype_context(XMLWriter& writer) const
{
    parent()->_write_doctype_context(writer);
}
