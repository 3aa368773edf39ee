#pragma once
// Internal to the xml library: the character-level reading shared by
// XMLString, XMLName and XMLParser.

#include <istream>
#include <string>

// Single-character reads straight from the stream buffer. Each operation
// leaves the stream's state bits as istream::get(), unget() and std::ws
// would, without their per-character sentry cost. Nothing else may change
// the stream's state while a reader is in use: it keeps its own copy.
class XMLCharReader {
public:
    static constexpr int END = std::istream::traits_type::eof();

    explicit XMLCharReader(std::istream& is);

    // The next byte, or END with failbit (and eofbit at the end) set.
    int get()
    {
        if (!_good) {
            _is.setstate(std::ios::failbit);
            return END;
        }
        int c = _sb->sbumpc();
        if (c == END)
            _fail(std::ios::eofbit | std::ios::failbit);
        return c;
    }

    // Puts back the byte that the last successful get() returned.
    void unget()
    {
        if (_sb->sungetc() == END)
            _fail(std::ios::badbit);
    }

    // Skips white space; the end of input sets eofbit only.
    void skip_ws();

    // The XMLName reading rules; `out` is cleared first.
    void read_name(std::string& out);
    // The XMLString reading rules; `out` is cleared first.
    void read_string(std::string& out);

private:
    void _fail(std::ios::iostate bits)
    {
        _is.setstate(bits);
        _good = false;
    }
    void _read_quoted(std::string& out, int quote);
    void _read_unquoted(std::string& out, int c);
    void _read_entity(std::string& out);

    std::istream& _is;
    std::streambuf* _sb;
    bool _good; // the stream's good(), without going through the virtual base
};

// Character classes of the C locale; bytes above 127 belong to none.
inline bool xml_is_space(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}
inline bool xml_is_alpha(int c)
{
    return static_cast<unsigned>((c | 0x20) - 'a') < 26u;
}
inline bool xml_is_digit(int c)
{
    return static_cast<unsigned>(c - '0') < 10u;
}
inline bool xml_name_start(int c)
{
    return xml_is_alpha(c) || c == '&' || c == ':' || c == '_';
}
inline bool xml_name_char(int c)
{
    return xml_is_alpha(c) || xml_is_digit(c) || c == '-' || c == '.' || c == ':' || c == ';' || c == '_';
}
