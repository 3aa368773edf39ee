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

// The pieces of one writer call. Nothing between them can change the stream but a failed put, so
// whether it is plain is asked once, and again after a failure; the runs of one text all go in,
// as they always have.
class Pieces {
public:
    explicit Pieces(std::ostream& os) : _os(os), _plain(plain(os)) {}

    // A literal, so that its length is known where it is copied.
    template <std::size_t N>
    void markup(const char (&s)[N])
    {
        if (_plain)
            _put(s, N - 1);
        else
            _os << s;
    }

    // `open`, the name, `close`: one copy into the buffer when they fit.
    template <std::size_t N, std::size_t M>
    void tag(const char (&open)[N], const std::string& name, const char (&close)[M])
    {
        if (_plain) {
            const std::size_t n = xml_name_length(name);
            std::streambuf& sb = *_os.rdbuf();
            char* to = StreamPutArea::next(sb);
            if (to && static_cast<std::size_t>(StreamPutArea::end(sb) - to) >= N - 1 + n + M - 1) {
                std::memcpy(to, open, N - 1);
                std::memcpy(to + N - 1, name.data(), n);
                std::memcpy(to + N - 1 + n, close, M - 1);
                StreamPutArea::bump(sb, static_cast<int>(N - 1 + n + M - 1));
                return;
            }
        }
        markup(open);
        this->name(name);
        if (M > 1)
            markup(close);
    }

    void name(const std::string& name)
    {
        if (_plain)
            _put(name.data(), xml_name_length(name));
        else
            _os << XMLName(name);
    }

    void text(const std::string& text)
    {
        if (!_plain) {
            _os << XMLString(text);
            return;
        }
        xml_escape(
            text, [this](const char* s, std::size_t n) { _put(s, n); },
            [this](const char* entity) { _put(entity, std::strlen(entity)); });
    }

    void raw(const std::string& text)
    {
        if (_plain)
            _put(text.data(), text.size());
        else
            _os << text;
    }

private:
    void _put(const char* s, std::size_t n)
    {
        std::streambuf& sb = *_os.rdbuf();
        char* to = StreamPutArea::next(sb);
        if (to && static_cast<std::size_t>(StreamPutArea::end(sb) - to) >= n) {
            std::memcpy(to, s, n);
            StreamPutArea::bump(sb, static_cast<int>(n));
        } else if (sb.sputn(s, static_cast<std::streamsize>(n)) != static_cast<std::streamsize>(n)) {
            _os.setstate(std::ios_base::badbit);
            _plain = false;
        }
    }

    std::ostream& _os;
    bool _plain;
};

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
    Pieces(_os).tag("<", name, "");
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
        Pieces(_os).markup("/>");
        _start_tag_open = false;
    } else if (name.empty()) {
        _end_tag_on_line = false;
        return;
    } else {
        if (!_end_tag_on_line)
            write_indent();
        Pieces(_os).tag("</", name, ">");
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
    Pieces out(_os);
    out.markup("=\"");
    out.text(value);
    out.markup("\"");
}

void XMLWriter::write_string(const std::string& text, bool escape)
{
    if (text.empty())
        return;
    if (_start_tag_open)
        _close_start_tag();
    Pieces out(_os);
    if (_separator_due)
        out.markup(" ");
    if (escape)
        out.text(text);
    else
        out.raw(text);
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
    Pieces(_os).markup(">");
    _start_tag_open = false;
    _separator_due = false;
}

void XMLWriter::_write_name(const std::string& name)
{
    Pieces out(_os);
    if (_separator_due)
        out.markup(" ");
    out.name(name);
    _separator_due = true;
}
