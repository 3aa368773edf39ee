#include "xml/xml_string.h"

#include "xml/xml_reader.h"

#include "foundation/streambuf_areas.h"

#include <ostream>
#include <string_view>

using GetArea = StreamGetArea;

void XMLCharReader::_restart(std::streambuf* sb)
{
    _sb = sb;
    _begin = _p = _end = nullptr;
    _local = false;
}

bool XMLCharReader::_refill()
{
    _release();
    // istream's sentry flushes the tied stream before it reads.
    if (std::ostream* tie = _is.tie())
        tie->flush();
    if (!_sb || _sb->sgetc() == END)
        return false;
    char* next = GetArea::next(*_sb);
    char* end = GetArea::end(*_sb);
    if (next && next < end) {
        _begin = GetArea::begin(*_sb);
        _p = next;
        _end = end;
        return true;
    }
    // A buffer without a get area hands out one byte at a time.
    _one = static_cast<char>(_sb->sbumpc());
    _local = true;
    _begin = _p = &_one;
    _end = &_one + 1;
    return true;
}

void XMLCharReader::_release()
{
    if (_local) {
        _local = false;
        if (_p == _begin && _sb->sputbackc(_one) == END)
            setstate(std::ios::badbit);
    } else if (_p) {
        GetArea::bump(*_sb, static_cast<int>(_p - GetArea::next(*_sb)));
    }
    _begin = _p = _end = nullptr;
}

bool XMLCharReader::_more()
{
    if (!_good()) {
        setstate(std::ios::failbit);
        return false;
    }
    if (!_refill()) {
        setstate(std::ios::eofbit | std::ios::failbit);
        return false;
    }
    return true;
}

int XMLCharReader::_get_slow()
{
    return _more() ? static_cast<unsigned char>(*_p++) : END;
}

void XMLCharReader::_unget_slow()
{
    if (_local && _p != _begin) {
        --_p;
        return;
    }
    _release();
    if (!_sb || _sb->sungetc() == END)
        setstate(std::ios::badbit);
}

void XMLCharReader::_skip_ws_slow()
{
    if (!_good()) {
        setstate(std::ios::failbit);
        return;
    }
    for (;;) {
        while (_p != _end && xml_is_space(static_cast<unsigned char>(*_p)))
            ++_p;
        if (_p != _end)
            return;
        if (!_refill()) {
            setstate(std::ios::eofbit);
            return;
        }
    }
}

namespace {

void append_run(std::string& out, const char* from, const char* to)
{
    if (from != to)
        out.append(from, static_cast<std::size_t>(to - from));
}

} // namespace

// The scanners below take bytes in runs [run, _p) and append a run when it
// ends, when an entity interrupts it or when the window runs out. A byte
// that ends a name or a string is looked at and left in place, which is
// what a get() followed by unget() would do.

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
    const char* run = _p - 1;
    for (;;) {
        while (_p != _end) {
            const char ch = *_p;
            if (!xml_name_char(static_cast<unsigned char>(ch))) {
                append_run(out, run, _p);
                return;
            }
            ++_p;
            if (ch == ';') {
                append_run(out, run, _p);
                return;
            }
        }
        append_run(out, run, _p);
        if (!_more())
            return;
        run = _p;
    }
}

void XMLCharReader::read_string(std::string& out)
{
    out.clear();
    skip_ws();
    int c = get();
    if (c == END)
        return;
    if (c == '"' || c == '\'') {
        _read_quoted(out, c);
        return;
    }
    unget();
    if (c != '<' && c != '>')
        _read_unquoted(out);
}

void XMLCharReader::_read_quoted(std::string& out, int quote)
{
    const char* run = _p;
    for (;;) {
        if (_p == _end) {
            append_run(out, run, _p);
            if (!_more())
                return;
            run = _p;
        }
        const unsigned char c = static_cast<unsigned char>(*_p);
        if (!(xml_class::table.bits[c] & xml_class::STOP)) {
            ++_p;
            continue;
        }
        if (c == quote) {
            append_run(out, run, _p++);
            return;
        }
        if (c == '<' || c == '>') {
            append_run(out, run, _p);
            return;
        }
        ++_p;
        if (c == '&') {
            append_run(out, run, _p - 1);
            _read_entity(out);
            run = _p;
        }
    }
}

void XMLCharReader::_read_unquoted(std::string& out)
{
    // White space goes in with its run but counts only once a later byte follows.
    std::size_t kept = out.size();
    const char* run = _p;
    for (;;) {
        if (_p == _end) {
            append_run(out, run, _p);
            if (!_more())
                break;
            run = _p;
        }
        const unsigned char c = static_cast<unsigned char>(*_p);
        const unsigned char bits = xml_class::table.bits[c];
        if (bits & xml_class::STOP) {
            if (c != '&') {
                append_run(out, run, _p);
                break;
            }
            append_run(out, run, _p++);
            _read_entity(out);
            kept = out.size();
            run = _p;
        } else {
            ++_p;
            if (!(bits & xml_class::SPACE))
                kept = out.size() + static_cast<std::size_t>(_p - run);
        }
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
    XMLCharReader in(is);
    in.start();
    in.read_string(_value);
}

void XMLString::_write(std::ostream& os) const
{
    xml_escape(
        _value, [&os](const char* s, std::size_t n) { os.write(s, static_cast<std::streamsize>(n)); },
        [&os](const char* entity) { os << entity; });
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
    XMLCharReader in(is);
    in.start();
    in.read_name(_value);
}

void XMLName::_write(std::ostream& os) const
{
    os.write(_value.data(), static_cast<std::streamsize>(xml_name_length(_value)));
}
