#include "xml/xml_writer.h"

#include "foundation/streambuf_areas.h"
#include "xml/xml_reader.h"
#include "xml/xml_string.h"

#include <cstring>
#include <ostream>

namespace {

// A stream in its plain state (good, no field width, nothing tied) takes the pieces of a reply
// straight into its buffer, which is all that operator<< and write() would do with them, less a
// sentry for every piece. Any other stream gets them through those operators.
bool plain(std::ostream& os)
{
    return os.rdstate() == std::ios_base::goodbit && os.width() == 0 && !os.tie();
}

inline void put(std::ostream& os, const char* s, std::size_t n)
{
    std::streambuf& sb = *os.rdbuf();
    char* to = StreamPutArea::next(sb);
    if (to && static_cast<std::size_t>(StreamPutArea::end(sb) - to) >= n) {
        std::memcpy(to, s, n);
        StreamPutArea::bump(sb, static_cast<int>(n));
    } else if (sb.sputn(s, static_cast<std::streamsize>(n)) != static_cast<std::streamsize>(n)) {
        os.setstate(std::ios_base::badbit);
    }
}

// A literal, so that its length is known where it is copied.
template <std::size_t N>
void put_markup(std::ostream& os, const char (&s)[N])
{
    if (plain(os))
        put(os, s, N - 1);
    else
        os << s;
}

void put_name(std::ostream& os, const std::string& name)
{
    if (plain(os))
        put(os, name.data(), xml_name_length(name));
    else
        os << XMLName(name);
}

void put_text(std::ostream& os, const std::string& text)
{
    if (!plain(os)) {
        os << XMLString(text);
        return;
    }
    xml_escape(
        text, [&os](const char* s, std::size_t n) { put(os, s, n); },
        [&os](const char* entity) { put(os, entity, std::strlen(entity)); });
}

} // namespace

XMLWriter::XMLWriter(std::ostream& os, bool formatted) : _os(os), _formatted(formatted) {}

void XMLWriter::WriteStartDoc()
{
    _indent = 0;
    _os << "<?xml version=\"1.0\"?>";
}

void XMLWriter::WriteEndDoc()
{
    if (_start_tag_open) {
        _os << "/>";
        dec_indent();
        _start_tag_open = false;
        _separator_due = false;
    }
    _os << '\n';
    _os.flush();
}

void XMLWriter::WriteStartElement(const std::string& name)
{
    _close_start_tag();
    if (name.empty())
        return;
    write_indent();
    put_markup(_os, "<");
    put_name(_os, name);
    inc_indent();
    _start_tag_open = true;
    _separator_due = true;
    _end_tag_on_line = true;
}

void XMLWriter::WriteEndElement(const std::string& name)
{
    // Taken off for an empty name too, though its start added none; the
    // layout of existing documents follows from this.
    dec_indent();
    if (_start_tag_open) {
        put_markup(_os, "/>");
        _start_tag_open = false;
    } else if (name.empty()) {
        _end_tag_on_line = false;
        return;
    } else {
        if (!_end_tag_on_line)
            write_indent();
        put_markup(_os, "</");
        put_name(_os, name);
        put_markup(_os, ">");
    }
    _separator_due = false;
    _end_tag_on_line = false;
}

void XMLWriter::WriteAttribute(const std::string& name)
{
    if (name.empty())
        return;
    _write_name(name);
}

void XMLWriter::WriteAttributeValuePair(const std::string& name, const std::string& value)
{
    if (name.empty())
        return;
    _write_name(name);
    put_markup(_os, "=\"");
    put_text(_os, value);
    put_markup(_os, "\"");
}

void XMLWriter::write_string(const std::string& text, bool escape)
{
    if (text.empty())
        return;
    if (_start_tag_open)
        _close_start_tag();
    else if (_separator_due)
        put_markup(_os, " ");
    if (escape)
        put_text(_os, text);
    else if (plain(_os))
        put(_os, text.data(), text.size());
    else
        _os << text;
    _separator_due = true;
}

void XMLWriter::write_indent()
{
    if (!_formatted)
        return;
    _os << '\n';
    _os.flush();
    _os << std::string(static_cast<std::size_t>(_indent), '\t');
}

void XMLWriter::_close_start_tag()
{
    if (!_start_tag_open)
        return;
    put_markup(_os, ">");
    _start_tag_open = false;
    _separator_due = false;
}

void XMLWriter::_write_name(const std::string& name)
{
    if (_separator_due)
        put_markup(_os, " ");
    put_name(_os, name);
    _separator_due = true;
}
