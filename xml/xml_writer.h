#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

// Writes the configuration language, either formatted (line breaks and tab
// indent) or compact for the wire (one line). It keeps no element stack: the
// caller names the element again at its end. Names go out through XMLName and
// text through XMLString, so their cutting and escaping rules apply.
//
// An element with an empty name is a transparent layer: it writes no tag and
// its children stand in its parent. Two strings in a row are separated by one
// blank ("43.21 9"); a string right after an end tag gets none ("</Error>1234").
class XMLWriter {
public:
    XMLWriter(std::ostream& os, bool formatted);

    // Resets the indent and writes the XML declaration, without a line break.
    void WriteStartDoc();
    // Closes a still open start tag with "/>", then writes a line feed and
    // flushes (in compact mode too).
    void WriteEndDoc();
    // Closes an open start tag and opens "<name" on a new line.
    void WriteStartElement(const std::string& name);
    // Writes "/>" if the start tag is still open, else "</name>": on the same
    // line when only text came since the start tag, else on a new line.
    void WriteEndElement(const std::string& name);
    // A bare attribute name into the open start tag.
    void WriteAttribute(const std::string& name);
    // name="value" into the open start tag.
    void WriteAttributeValuePair(const std::string& name, const std::string& value);
    // Element text; escaped through XMLString when `escape` is set, else byte
    // for byte. Empty text writes nothing.
    void write_string(const std::string& text, bool escape);

    void inc_indent() { ++_indent; }
    // Stops at 0.
    void dec_indent()
    {
        if (_indent > 0)
            --_indent;
    }
    // Formatted mode only: a line feed (flushed), then one tab per level.
    void write_indent();

private:
    void _close_start_tag();
    void _write_name(const std::string& name);

    std::ostream& _os;
    bool _formatted;
    bool _start_tag_open = false;
    std::int32_t _indent = 0;
    bool _separator_due = false;    // a blank goes before the next attribute or string
    bool _end_tag_on_line = false;  // only text since the last start tag
};
