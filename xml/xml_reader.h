#pragma once
// Internal to the xml library: the character-level reading shared by
// XMLString, XMLName and XMLParser.

#include <istream>
#include <string>
#include <string_view>

#include "foundation/streambuf_areas.h"

// Character classes of the C locale; bytes above 127 belong to none. A
// table, since the scanners ask for every byte.
namespace xml_class {
// NAME_PLAIN: a name byte that does not end the name, i.e. other than ';'.
enum : unsigned char { SPACE = 1, NAME_START = 2, NAME = 4, DIGIT = 8, STOP = 16, NAME_PLAIN = 32 };

struct Table {
    unsigned char bits[256] = {};
    constexpr Table()
    {
        for (int c = '\t'; c <= '\r'; ++c)
            bits[c] = SPACE;
        mark(" ", SPACE);
        for (int c = 'a'; c <= 'z'; ++c)
            bits[c] = bits[c - 'a' + 'A'] = NAME_START | NAME;
        for (int c = '0'; c <= '9'; ++c)
            bits[c] = DIGIT | NAME;
        mark("&", NAME_START | STOP);
        mark(":_", NAME_START | NAME);
        mark("-.;", NAME);
        mark("\"'<>", STOP);
        for (auto& b : bits)
            if (b & NAME)
                b |= NAME_PLAIN;
        bits[int(';')] &= ~NAME_PLAIN;
    }

private:
    constexpr void mark(const char* chars, unsigned char bit)
    {
        for (; *chars; ++chars)
            bits[static_cast<unsigned char>(*chars)] = bit;
    }
};
inline constexpr Table table{};

inline bool is(int c, unsigned char bit)
{
    return c >= 0 && (table.bits[c] & bit);
}
} // namespace xml_class

inline bool xml_is_space(int c)
{
    return xml_class::is(c, xml_class::SPACE);
}
inline bool xml_is_digit(int c)
{
    return xml_class::is(c, xml_class::DIGIT);
}
inline bool xml_name_start(int c)
{
    return xml_class::is(c, xml_class::NAME_START);
}
inline bool xml_name_char(int c)
{
    return xml_class::is(c, xml_class::NAME);
}

// Reads straight from the stream buffer's get area, so that names and text
// are scanned and appended in runs rather than byte by byte. Each operation
// leaves the stream's state bits as istream::get(), unget() and std::ws
// would. Between start() and finish() nothing else may touch the stream:
// the reader keeps its own copy of the state and of the read position.
// finish() hands the position back; the next start() takes the stream as it
// then is, so a parser keeps one reader and brackets each token with them.
class XMLCharReader {
public:
    static constexpr int END = std::istream::traits_type::eof();

    // Not started; see start().
    explicit XMLCharReader(std::istream& is) : _is(is) {}
    ~XMLCharReader() { finish(); }
    XMLCharReader(const XMLCharReader&) = delete;
    XMLCharReader& operator=(const XMLCharReader&) = delete;

    void start()
    {
        _state = _is.rdstate();
        std::streambuf* sb = _is.rdbuf();
        // A window kept from the last token stays good while the buffer is where it was left.
        if (!sb || sb != _sb || _local || StreamGetArea::next(*sb) != _p || StreamGetArea::end(*sb) != _end)
            _restart(sb);
    }
    void finish()
    {
        if (_local)
            _release();
        else if (_p)
            StreamGetArea::bump(*_sb, static_cast<int>(_p - StreamGetArea::next(*_sb)));
    }

    // The stream's state as the reads so far left it.
    bool failed() const { return _state & (std::ios::failbit | std::ios::badbit); }
    bool eof() const { return _state & std::ios::eofbit; }
    void setstate(std::ios::iostate bits)
    {
        _state |= bits;
        _is.setstate(bits);
    }

    // The next byte, or END with failbit (and eofbit at the end) set.
    int get()
    {
        if (_p != _end)
            return static_cast<unsigned char>(*_p++);
        return _get_slow();
    }

    // Puts back the byte that the last successful get() returned.
    void unget()
    {
        if (_p != _begin && !_local)
            --_p;
        else
            _unget_slow();
    }

    // Skips white space; the end of input sets eofbit only.
    void skip_ws()
    {
        if (_state == std::ios::goodbit)
            while (_p != _end && xml_is_space(static_cast<unsigned char>(*_p)))
                ++_p;
        if (_p == _end || _state != std::ios::goodbit)
            _skip_ws_slow();
    }

    // The XMLName reading rules; `out` is cleared first.
    void read_name(std::string& out);
    // The XMLString reading rules; `out` is cleared first.
    void read_string(std::string& out);

    // What shortcut() read.
    enum Shortcut : unsigned char { NONE, START_TAG, END_TAG, TEXT, ATTRIBUTE, PAIR };
    // Reads a common token of a good stream whole when all of it lies in the window, just as the
    // byte-wise rules would: "<name", "</name>", unquoted text free of entities up to the byte that
    // ends it, and in a start tag a name or name="value" free of entities. NONE touches nothing.
    // In a start tag the token may follow the ">" that closes the tag, which `closed` then tells.
    // `text` and `value` view the window: they are good until the stream is read again.
    Shortcut shortcut(bool in_tag, bool& closed, std::string_view& text, std::string_view& value);

private:
    bool _good() const { return _state == std::ios::goodbit; }
    void _restart(std::streambuf* sb);
    void _skip_ws_slow();
    // Makes bytes available, or fails the stream as get() does at the end.
    bool _more();
    int _get_slow();
    void _unget_slow();
    // Makes bytes available; false at the end of input (no state bits set).
    bool _refill();
    // Hands the read position back to the stream buffer and forgets the window.
    void _release();
    void _read_quoted(std::string& out, int quote);
    void _read_unquoted(std::string& out);
    void _read_entity(std::string& out);
    Shortcut _outside(const char* p, std::string_view& text);
    Shortcut _attribute(const char* p, std::string_view& name, std::string_view& value);

    // The stream as basic_ios, which istream holds as a virtual base: reached once, not per token.
    std::ios& _is;
    std::streambuf* _sb = nullptr;
    std::ios::iostate _state = std::ios::goodbit;
    // The window [_begin, _end) is the buffer's get area, read up to _p; or,
    // for a buffer without a get area, the one byte in _one.
    const char* _begin = nullptr;
    const char* _p = nullptr;
    const char* _end = nullptr;
    bool _local = false;
    char _one = 0;
};


// The number of leading bytes of `name` that XMLName writes: none unless it starts like a name,
// then up to the first byte that can't be in one, or through a ";".
inline std::size_t xml_name_length(const std::string& name)
{
    const auto* p = reinterpret_cast<const unsigned char*>(name.data());
    const std::size_t size = name.size();
    if (size == 0 || !(xml_class::table.bits[p[0]] & xml_class::NAME_START))
        return 0;
    std::size_t n = 1;
    while (n < size && (xml_class::table.bits[p[n]] & xml_class::NAME_PLAIN))
        ++n;
    return n < size && p[n] == ';' ? n + 1 : n;
}

// XMLString's escaping: hands plain runs of `text` to run(const char*, size_t) and the entity of
// each escaped byte to entity(const char*). An "&" that opens a complete entity stays as it is.
template <class Run, class Entity>
void xml_escape(const std::string& text, Run run, Entity entity)
{
    auto entity_follows = [&text](std::size_t amp) {
        for (std::size_t i = amp + 1; i < text.size(); ++i) {
            const char c = text[i];
            if (c == ';')
                return i > amp + 1;
            if (xml_is_space(static_cast<unsigned char>(c)) || c == '"' || c == '&' || c == '\'' || c == '<' || c == '>')
                return false;
        }
        return false;
    };
    std::size_t done = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* esc;
        switch (text[i]) {
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
        run(text.data() + done, i - done);
        entity(esc);
        done = i + 1;
    }
    run(text.data() + done, text.size() - done);
}
