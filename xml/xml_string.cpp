#include "xml/xml_string.h"

#include "xml/xml_reader.h"

#include <ostream>
#include <string_view>

XMLCharReader::XMLCharReader(std::istream& is) : _is(is), _sb(is.rdbuf()), _good(is.good())
{
    // istream's sentry does this before every read.
    if (_good && is.tie())
        is.tie()->flush();
}

void XMLCharReader::skip_ws()
{
    if (!_good) {
        _is.setstate(std::ios::failbit);
        return;
    }
    for (;;) {
        int c = _sb->sgetc();
        if (c == END) {
            _fail(std::ios::eofbit);
            return;
        }
        if (!xml_is_space(c))
            return;
        _sb->sbumpc();
    }
}

void XMLCharReader::read_name(std::string& out)
{
    out.clear();
    int c = get();
    if (c == END)
        return;
    if (!xml_name_start(c)) {
        unget();
        return;
    }
    out += static_cast<char>(c);
    while (c != ';') {
        c = get();
        if (c == END)
            return;
        if (!xml_name_char(c)) {
            unget();
            return;
        }
        out += static_cast<char>(c);
    }
}

void XMLCharReader::read_string(std::string& out)
{
    out.clear();
    skip_ws();
    int c = get();
    if (c == END)
        return;
    if (c == '"' || c == '\'')
        _read_quoted(out, c);
    else if (c == '<' || c == '>')
        unget();
    else
        _read_unquoted(out, c);
}

void XMLCharReader::_read_quoted(std::string& out, int quote)
{
    for (;;) {
        int c = get();
        if (c == END || c == quote)
            return;
        if (c == '<' || c == '>') {
            unget();
            return;
        }
        if (c == '&')
            _read_entity(out);
        else
            out += static_cast<char>(c);
    }
}

void XMLCharReader::_read_unquoted(std::string& out, int c)
{
    // White space goes in at once but counts only once a later byte follows.
    std::size_t kept = 0;
    for (;;) {
        if (c == '"' || c == '\'' || c == '<' || c == '>') {
            unget();
            break;
        }
        if (xml_is_space(c)) {
            out += static_cast<char>(c);
        } else {
            if (c == '&')
                _read_entity(out);
            else
                out += static_cast<char>(c);
            kept = out.size();
        }
        c = get();
        if (c == END)
            break;
    }
    out.resize(kept);
}

void XMLCharReader::_read_entity(std::string& out)
{
    const std::size_t start = out.size();
    out += '&';
    for (;;) {
        int c = get();
        if (c == END || xml_is_space(c))
            return; // the white space byte is lost; long-standing behaviour, kept
        if (c == '"' || c == '&' || c == '\'' || c == '<' || c == '>') {
            unget();
            return;
        }
        out += static_cast<char>(c);
        if (c == ';')
            break;
    }
    static constexpr struct {
        std::string_view entity;
        char ch;
    } known[] = {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}, {"&amp;", '&'}};
    const std::string_view entity(out.data() + start, out.size() - start);
    for (const auto& k : known) {
        if (entity == k.entity) {
            out.resize(start);
            out += k.ch;
            return;
        }
    }
}

void XMLString::_read(std::istream& is)
{
    XMLCharReader(is).read_string(_value);
}

void XMLString::_write(std::ostream& os) const
{
    // An "&" that opens a complete entity goes out as it is.
    auto entity_follows = [this](std::size_t amp) {
        for (std::size_t i = amp + 1; i < _value.size(); ++i) {
            char c = _value[i];
            if (c == ';')
                return i > amp + 1;
            if (xml_is_space(static_cast<unsigned char>(c)) || c == '"' || c == '&' || c == '\'' || c == '<' || c == '>')
                return false;
        }
        return false;
    };
    std::size_t done = 0;
    for (std::size_t i = 0; i < _value.size(); ++i) {
        const char* esc;
        switch (_value[i]) {
        case '"': esc = "&quot;"; break;
        case '\'': esc = "&apos;"; break;
        case '<': esc = "&lt;"; break;
        case '>': esc = "&gt;"; break;
        case '&':
            if (entity_follows(i))
                continue;
            esc = "&amp;";
            break;
        default: continue;
        }
        os.write(_value.data() + done, static_cast<std::streamsize>(i - done));
        os << esc;
        done = i + 1;
    }
    os.write(_value.data() + done, static_cast<std::streamsize>(_value.size() - done));
}

std::istream& operator>>(std::istream& is, XMLString& s)
{
    s._read(is);
    return is;
}

std::ostream& operator<<(std::ostream& os, const XMLString& s)
{
    s._write(os);
    return os;
}

void XMLName::_read(std::istream& is)
{
    XMLCharReader(is).read_name(_value);
}

void XMLName::_write(std::ostream& os) const
{
    std::size_t n = 0;
    if (!_value.empty() && xml_name_start(static_cast<unsigned char>(_value[0]))) {
        n = 1;
        while (n < _value.size() && _value[n - 1] != ';' && xml_name_char(static_cast<unsigned char>(_value[n])))
            ++n;
    }
    os.write(_value.data(), static_cast<std::streamsize>(n));
}
