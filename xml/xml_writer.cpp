#include "xml/xml_writer.h"

#include "xml/xml_string.h"

#include <ostream>

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
    _os << '<' << XMLName(name);
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
        _os << "/>";
        _start_tag_open = false;
    } else if (name.empty()) {
        _end_tag_on_line = false;
        return;
    } else {
        if (!_end_tag_on_line)
            write_indent();
        _os << "</" << XMLName(name) << '>';
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
    _os << "=\"" << XMLString(value) << '"';
}

void XMLWriter::write_string(const std::string& text, bool escape)
{
    if (text.empty())
        return;
    if (_start_tag_open)
        _close_start_tag();
    else if (_separator_due)
        _os << ' ';
    if (escape)
        _os << XMLString(text);
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
    _os << '>';
    _start_tag_open = false;
    _separator_due = false;
}

void XMLWriter::_write_name(const std::string& name)
{
    if (_separator_due)
        _os << ' ';
    _os << XMLName(name);
    _separator_due = true;
}
