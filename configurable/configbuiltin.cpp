#include "configurable/configbuiltin.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <ctime>
#include <iomanip>
#include <istream>
#include <iterator>
#include <limits>
#include <locale>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include "foundation/streambuf_areas.h"

namespace {

bool is_c_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_c_digit(char c)
{
    return c >= '0' && c <= '9';
}

// Whether a stream uses the classic locale; where the library allows, without the copy that
// getloc() makes, whose reference counts cost more than the rest of the check.
bool classic_locale(const std::ios_base& s)
{
#ifdef __GLIBCXX__
    return s._M_getloc() == std::locale::classic();
#else
    return s.getloc() == std::locale::classic();
#endif
}

// A stream that extracts as the classic locale does, skipping white space first, with nothing tied
// and no field width: the scanners below stand in for its extractors on the bytes in its buffer.
bool plain_input(std::istream& in)
{
    constexpr auto defaults = std::ios_base::skipws | std::ios_base::dec;
    return in.rdbuf() && in.good() && !in.tie() && in.width() == 0 &&
           (in.flags() & (std::ios_base::skipws | std::ios_base::basefield)) == defaults && classic_locale(in);
}

// Takes [start, stop) out of the buffer of a plain stream, where `stop` is a byte that ends the item
// or the end of the get area. An item that reaches that end is taken only if the buffer vouches
// that nothing follows (in_avail() of -1), and then sets eofbit as the extractor would.
bool take(std::istream& in, const char* start, const char* stop)
{
    std::streambuf& sb = *in.rdbuf();
    const int n = static_cast<int>(stop - start);
    StreamGetArea::bump(sb, n);
    if (stop == StreamGetArea::end(sb)) {
        if (sb.in_avail() != -1) {
            StreamGetArea::bump(sb, -n);
            return false;
        }
        in.setstate(std::ios_base::eofbit);
    }
    return true;
}

// The bytes a plain stream would read next, [start, end) of its buffer; false when it isn't plain
// or buffers nothing.
bool plain_area(std::istream& in, const char*& start, const char*& end)
{
    if (!plain_input(in))
        return false;
    start = StreamGetArea::next(*in.rdbuf());
    end = StreamGetArea::end(*in.rdbuf());
    return start;
}

// The scanners below read the forms a document holds from the bytes [p, end) as the stream's
// extractors would, without the locale's parsers, which cost more than the rest of a leaf's read.
// Leaves use them on a stream's buffer and, through read_text, on the text of a message.

// Most values a document holds have a few digits: as a whole number and a power of ten both exact
// in T, they make one correctly rounded division, the value from_chars gives (Clinger's fast path),
// at a fraction of its cost. "digits" or "digits.digits" in [p, end); false if it doesn't apply.
template <class T>
bool exact_decimal(const char* p, const char* end, bool negative, T& value)
{
    constexpr T powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
    constexpr uint64_t exact_up_to = uint64_t(1) << std::numeric_limits<T>::digits;
    if (end - p > 19)
        return false;
    uint64_t whole = 0;
    std::size_t fraction = 0; // digits after the point
    bool point = false;
    for (; p != end; ++p) {
        if (*p == '.') {
            point = true;
            continue;
        }
        whole = whole * 10 + uint64_t(*p - '0');
        fraction += point;
    }
    if (whole > exact_up_to || fraction >= std::size(powers))
        return false;
    value = T(whole) / powers[fraction];
    if (negative)
        value = -value;
    return true;
}

// `in >> value` for white space, then "-?digits" (for reals also "-?digits.digits") up to white
// space or `end`: where the number stops, or null for anything else (signs, exponents, words,
// text that goes on, a number out of range), which is left to the extractor.
template <class T>
const char* plain_number(const char* p, const char* end, T& value)
{
    while (p != end && is_c_space(*p))
        ++p;
    const char* const number = p;
    if (p != end && *p == '-')
        ++p;
    const char* const digits = p;
    while (p != end && is_c_digit(*p))
        ++p;
    if (p == digits)
        return nullptr;
    if (std::is_floating_point_v<T> && p != end && *p == '.')
        for (++p; p != end && is_c_digit(*p);)
            ++p;
    if (p != end && !is_c_space(*p))
        return nullptr;
    bool exact = false;
    if constexpr (std::is_floating_point_v<T>)
        exact = exact_decimal(digits, p, number != digits, value);
    if (!exact) {
        const auto [stop, ec] = std::from_chars(number, p, value);
        if (ec != std::errc() || stop != p)
            return nullptr;
    }
    if constexpr (std::is_floating_point_v<T>) {
        // Underflow is the stream's to judge.
        const std::string_view text(digits, size_t(p - digits));
        if (value != 0 ? !std::isnormal(value) : text.find_first_of("123456789") != text.npos)
            return nullptr;
    }
    return p;
}

// `in >> word`: after white space, up to white space or `end`; empty if there is none.
std::string_view plain_word(const char* p, const char* end)
{
    while (p != end && is_c_space(*p))
        ++p;
    const char* const word = p;
    while (p != end && !is_c_space(*p))
        ++p;
    return {word, size_t(p - word)};
}

// Whether `getline(in, text, '\0')` takes [start, end) whole: it is not empty and holds no '\0'.
bool plain_rest(const char* start, const char* end)
{
    return start != end && !std::memchr(start, '\0', size_t(end - start));
}

template <class T>
bool read_plain_number(std::istream& in, T& value)
{
    const char *start, *end;
    T parsed;
    const char* stop;
    if (!plain_area(in, start, end) || !(stop = plain_number(start, end, parsed)) || !take(in, start, stop))
        return false;
    value = parsed;
    return true;
}

// `std::getline(in, text, '\0')` when the rest of the input is in the buffer of a good stream with
// nothing tied and plain_rest holds: takes all of it, setting eofbit as getline would.
bool read_plain_rest(std::istream& in, std::string& text)
{
    if (!in.rdbuf() || !in.good() || in.tie())
        return false;
    const char* const start = StreamGetArea::next(*in.rdbuf());
    const char* const end = StreamGetArea::end(*in.rdbuf());
    if (!start || !plain_rest(start, end) || !take(in, start, end))
        return false;
    text.assign(start, end);
    return true;
}

// `in >> word` for a word that ends at white space or at a vouched end of input.
bool read_plain_word(std::istream& in, std::string& word)
{
    const char *start, *end;
    if (!plain_area(in, start, end))
        return false;
    const std::string_view w = plain_word(start, end);
    if (w.empty() || !take(in, start, w.data() + w.size()))
        return false;
    word = w;
    return true;
}

// The _read of a builtin leaf. A leaf of exactly the class `own` (a subclass may override read)
// that reads normally takes a value from `parse`, which sees the text as read() would and gives
// nothing for text it leaves to read(); the leaf is then prepared and set as read() would do it.
// Everything else goes through read() on a stream.
template <class Leaf, class Parse>
bool read_text(Leaf& leaf, const std::type_info& own, const std::string& text, XMLWriter& writer, Parse parse)
{
    if (typeid(leaf) == own && !(leaf.flags() & (Configurable::LOCKED | Configurable::READ_BLOCKED))) {
        if (const auto value = parse(text.data(), text.data() + text.size())) {
            if (!leaf._is_prepared())
                leaf._prepare_to_read();
            leaf.set(*value);
            return true;
        }
    }
    return leaf.Configurable::_read(text, writer);
}

template <class T>
std::optional<T> text_number(const char* start, const char* end)
{
    T value;
    if (plain_number(start, end, value))
        return value;
    return std::nullopt;
}

// `out << text` or `out.write(...)` for a good stream with nothing tied, no field width and no
// unitbuf: what they do then, less the sentry and the calls around it.
bool put_plain(std::ostream& out, const char* text, std::size_t n)
{
    if (!out.good() || out.tie() || out.width() != 0 || (out.flags() & std::ios_base::unitbuf))
        return false;
    if (out.rdbuf()->sputn(text, std::streamsize(n)) != std::streamsize(n))
        out.setstate(std::ios_base::badbit);
    return true;
}

void put_text(std::ostream& out, const std::string& text)
{
    if (!put_plain(out, text.data(), text.size()))
        out << text;
}

// printf's "%.6g" of a float of magnitude in [1e-4, 1e6), which it prints without an exponent.
// A float times a power of ten up to 1e9 is exact in a double, so the six digits are rounded once,
// from the exact value, half to even as printf does. Null for other values.
char* print_float_g6(char* first, float value)
{
    static constexpr double scale[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    const double x = std::fabs(double(value));
    if (!(x < 1e6))
        return nullptr;
    int exp = 5;  // x >= 10^exp
    while (x * scale[5 - exp] < 1e5)
        if (--exp < -4)
            return nullptr;
    auto digits = static_cast<uint32_t>(std::nearbyint(x * scale[5 - exp]));
    if (digits == 1000000) {  // rounded up to the next power of ten
        digits = 100000;
        if (++exp == 6)
            return nullptr;
    }
    char six[6];
    for (int i = 5; i >= 0; --i, digits /= 10)
        six[i] = char('0' + digits % 10);
    int n = 6;
    while (n > 1 && six[n - 1] == '0' && n > exp + 1)
        --n;
    char* out = first;
    if (std::signbit(value))
        *out++ = '-';
    if (exp < 0) {
        *out++ = '0';
        *out++ = '.';
        for (int i = -1; i > exp; --i)
            *out++ = '0';
        for (int i = 0; i < n; ++i)
            *out++ = six[i];
        return out;
    }
    for (int i = 0; i <= exp; ++i)
        *out++ = six[i];
    if (n > exp + 1) {
        *out++ = '.';
        for (int i = exp + 1; i < n; ++i)
            *out++ = six[i];
    }
    return out;
}

// `out << value` for a stream in its default settings, without going through the locale's number
// printer: to_chars with a precision prints as printf does, which is what that printer ends in.
template <class T>
bool write_plain_number(std::ostream& out, T value)
{
    constexpr auto defaults = std::ios_base::skipws | std::ios_base::dec;
    if (!out.good() || out.tie() || out.flags() != defaults || out.width() != 0 ||
        (std::is_floating_point_v<T> && out.precision() != 6) || !classic_locale(out))
        return false;
    char text[32];
    std::to_chars_result r;
    if constexpr (std::is_floating_point_v<T>) {
        if constexpr (std::is_same_v<T, float>) {
            if (char* end = print_float_g6(text, value)) {
                if (!put_plain(out, text, std::size_t(end - text)))
                    out.write(text, end - text);
                return true;
            }
        }
        r = std::to_chars(text, text + sizeof text, double(value), std::chars_format::general, 6);
    } else {
        r = std::to_chars(text, text + sizeof text, value);
    }
    if (r.ec != std::errc())
        return false;
    if (!put_plain(out, text, std::size_t(r.ptr - text)))
        out.write(text, r.ptr - text);
    return true;
}

}  // namespace

// --- ConfigurableReal ---

template <> const char* ConfigurableReal<float>::_type_word() { return "float"; }
template <> const char* ConfigurableReal<double>::_type_word() { return "double"; }

namespace {
template <class T> const char* range_error_text();
template <> const char* range_error_text<float>() { return "ConfigurableFloat: range error"; }
template <> const char* range_error_text<double>() { return "ConfigurableDouble: range error"; }
}  // namespace

template <class T>
ConfigurableReal<T>::ConfigurableReal(const std::string& name, T value)
    : Configurable(name), _value(value), _min(std::numeric_limits<T>::lowest()),
      _max(std::numeric_limits<T>::max()), _default(value), _mode(RangeMode::NONE)
{
}

template <class T>
ConfigurableReal<T>::ConfigurableReal(const std::string& name, T value, T min, T max, bool throw_on_range)
    : Configurable(name), _value(value), _min(min), _max(max), _default(value),
      _mode(throw_on_range ? RangeMode::RANGE_ERROR : RangeMode::CLAMP)
{
}

template <class T>
void ConfigurableReal<T>::set(T value)
{
    // The comparisons stand in this order on purpose: with sane limits only NaN throws, and NaN
    // passes the clamp and is stored.
    if (_mode == RangeMode::RANGE_ERROR && !(value > _min) && !(value < _max))
        throw std::range_error(range_error_text<T>());
    if (_mode != RangeMode::NONE) {
        if (_min > value)
            value = _min;
        else if (value > _max)
            value = _max;
    }
    if (value == _value)
        return;
    _value = value;
    _set_changed(true);
}

template <class T>
void ConfigurableReal<T>::read(std::istream& in, std::ostream& err)
{
    if (in.bad())
        return;
    T value;
    if (read_plain_number(in, value) || in >> value) {
        set(value);
        return;
    }
    in.clear();
    in.seekg(0);
    std::string word;
    if (!(in >> word)) {
        err << "unable to read " << _type_word();
        return;
    }
    if (word == "inf")
        set(std::numeric_limits<T>::infinity());
    else if (word == "-inf")
        set(-std::numeric_limits<T>::infinity());
    else if (word == "nan")
        set(std::numeric_limits<T>::quiet_NaN());
    else
        err << "unable to read " << _type_word();  // reported; the element goes on
}

template <class T>
bool ConfigurableReal<T>::_read(const std::string& text, XMLWriter& writer)
{
    using Own = std::conditional_t<std::is_same_v<T, float>, ConfigurableFloat, ConfigurableDouble>;
    return read_text(*this, typeid(Own), text, writer, text_number<T>);
}

template <class T>
void ConfigurableReal<T>::write(std::ostream& out) const
{
    if (!write_plain_number(out, _value))
        out << _value;
}

template <class T>
void ConfigurableReal<T>::write_doctype(std::ostream& out) const
{
    out << _type_word() << ':' << _default;
    if (_mode != RangeMode::NONE)
        out << ';' << _min << "..." << _max;
}

template class ConfigurableReal<float>;
template class ConfigurableReal<double>;

// --- ConfigurableInteger, ConfigurableTimeT ---

ConfigurableInteger::ConfigurableInteger(const std::string& name, int64_t value)
    : ConfigurableInteger(name, value, std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max())
{
}

ConfigurableInteger::ConfigurableInteger(const std::string& name, int64_t value, int64_t min)
    : ConfigurableInteger(name, value, min, std::numeric_limits<int64_t>::max())
{
}

ConfigurableInteger::ConfigurableInteger(const std::string& name, int64_t value, int64_t min, int64_t max)
    : Configurable(name), _value(value), _min(min), _max(max), _default(value)
{
}

void ConfigurableInteger::set(int64_t value)
{
    if (value < _min)
        value = _min;
    else if (value > _max)
        value = _max;
    if (value == _value)
        return;
    _value = value;
    _set_changed(true);
}

void ConfigurableInteger::read(std::istream& in, std::ostream& err)
{
    int64_t value;
    if (read_plain_number(in, value) || in >> value)
        set(value);
    else
        err << "unable to read integer";
}

bool ConfigurableInteger::_read(const std::string& text, XMLWriter& writer)
{
    return read_text(*this, typeid(ConfigurableInteger), text, writer, text_number<int64_t>);
}

void ConfigurableInteger::write(std::ostream& out) const
{
    if (!write_plain_number(out, _value))
        out << _value;
}

void ConfigurableInteger::write_doctype(std::ostream& out) const
{
    out << "integer:" << _default;
    if (_min != std::numeric_limits<int64_t>::min() || _max != std::numeric_limits<int64_t>::max())
        out << ';' << _min << "..." << _max;
}

ConfigurableTimeT::ConfigurableTimeT(const std::string& name, int64_t value)
    : ConfigurableInteger(name, value, 0)
{
}

void ConfigurableTimeT::read(std::istream& in, std::ostream& err)
{
    int64_t value;
    if (!(in >> value)) {
        err << "unable to read time_t";
        return;
    }
    char c;
    if (in.get(c) && c == '-') {
        // A local date and time: the integer was the year.
        int month, day, hour, minute, second;
        char sep1, sep2, sep3;
        if (in >> month >> sep1 >> day >> hour >> sep2 >> minute >> sep3 >> second && sep3 == ':') {
            std::tm t{};
            t.tm_year = int(value) - 1900;
            t.tm_mon = month - 1;
            t.tm_mday = day;
            t.tm_hour = hour;
            t.tm_min = minute;
            t.tm_sec = second;
            t.tm_isdst = -1;
            value = std::mktime(&t);
        }
    } else {
        in.clear();
    }
    ConfigurableInteger::set(value);
}

// --- ConfigurableBool ---

ConfigurableBool::ConfigurableBool(const std::string& name, bool value)
    : Configurable(name), _value(value), _default(value)
{
}

void ConfigurableBool::set(bool value)
{
    if (value == _value)
        return;
    _value = value;
    _set_changed(true);
}

void ConfigurableBool::read(std::istream& in, std::ostream& err)
{
    std::string word;
    if (!read_plain_word(in, word) && !(in >> word))
        err << "unable to read bool";
    else if (word == "true")
        set(true);
    else if (word == "false")
        set(false);
    else
        err << "invalid bool";
}

bool ConfigurableBool::_read(const std::string& text, XMLWriter& writer)
{
    return read_text(*this, typeid(ConfigurableBool), text, writer, [](const char* start, const char* end) {
        const std::string_view word = plain_word(start, end);
        return word == "true" ? std::optional(true) : word == "false" ? std::optional(false) : std::nullopt;
    });
}

void ConfigurableBool::write(std::ostream& out) const
{
    if (!put_plain(out, _value ? "true" : "false", _value ? 4 : 5))
        out << (_value ? "true" : "false");
}

void ConfigurableBool::write_doctype(std::ostream& out) const
{
    out << "true|false";
}

// --- ConfigurableString, ConfigurableStringProxyReadOnly ---

ConfigurableString::ConfigurableString(const std::string& name, const std::string& value)
    : Configurable(name), _value(value), _default(value)
{
}

void ConfigurableString::set(const std::string& value)
{
    if (value == _value)
        return;
    _value = value;
    _set_changed(true);
}

void ConfigurableString::read(std::istream& in, std::ostream& err)
{
    std::string text;
    if (read_plain_rest(in, text) || std::getline(in, text, '\0'))
        set(text);
    else
        err << "unable to read string\n";
}

bool ConfigurableString::_read(const std::string& text, XMLWriter& writer)
{
    return read_text(*this, typeid(ConfigurableString), text, writer, [&text](const char* start, const char* end) {
        return plain_rest(start, end) ? &text : nullptr;
    });
}

void ConfigurableString::write(std::ostream& out) const
{
    put_text(out, _value);
}

void ConfigurableString::write_doctype(std::ostream& out) const
{
    out << "string";
    if (!_default.empty())
        out << ':' << _default;
}

ConfigurableStringProxyReadOnly::ConfigurableStringProxyReadOnly(const std::string& name,
                                                                 const ConfigurableString& target)
    : Configurable(name), _target(target)
{
}

void ConfigurableStringProxyReadOnly::write(std::ostream& out) const
{
    put_text(out, _target.get());
}

void ConfigurableStringProxyReadOnly::write_doctype(std::ostream& out) const
{
    out << "string";
}

// --- ConfigurableTimestamp and the time and date leaves ---

namespace {

// Fields of a time or date leaf, each two digits wide unless said; the fill goes back to a blank.
struct Digits {
    std::ostream& out;
    explicit Digits(std::ostream& o) : out(o) { out << std::setfill('0'); }
    ~Digits() { out << std::setfill(' '); }
    Digits& operator()(int value, int width = 2)
    {
        out << std::setw(width) << value;
        return *this;
    }
    Digits& operator()(char separator)
    {
        out << separator;
        return *this;
    }
};

// Reads "int sep int [sep int]" with fixed separators; false if anything is off.
bool read_fields(std::istream& in, char separator, int* fields, int count)
{
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            char c;
            if (!(in >> c) || c != separator)
                return false;
        }
        if (!(in >> fields[i]))
            return false;
    }
    return true;
}

void fail(std::istream& in, std::ostream& err, const char* text)
{
    err << text << '\n';
    in.setstate(std::ios_base::failbit);
}

}  // namespace

ConfigurableTimestamp::ConfigurableTimestamp(const std::string& name, const Timestamp& value)
    : Configurable(name), _value(value), _default(value)
{
}

void ConfigurableTimestamp::set(const Timestamp& value)
{
    if (value.get() == _value.get())
        return;
    _value = value;
    _set_changed(true);
}

void ConfigurableTimestamp::read(std::istream& in, std::ostream& err)
{
    Timestamp value(0.0);
    value._read(in);
    if (in.fail())
        err << "unable to read Timestamp\n";
    else
        set(value);
}

void ConfigurableTimestamp::write(std::ostream& out) const
{
    _value._write(out);
}

void ConfigurableTimestamp::write_doctype(std::ostream& out) const
{
    out << "YYYY-MM-DD HH:MM:SS.SS";
}

void ConfigurableTime::read(std::istream& in, std::ostream& err)
{
    int f[3];
    if (!read_fields(in, ':', f, 3))
        return fail(in, err, "unable to read time (should be HH:MM:SS)");
    set(Timestamp(f[0] * 3600.0 + f[1] * 60.0 + f[2]));
}

void ConfigurableTime::write(std::ostream& out) const
{
    Digits{out}(get().hour())(':')(get().min())(':')(int(get().sec()));
}

void ConfigurableTime::write_doctype(std::ostream& out) const
{
    out << "HH:MM:SS";
}

void ConfigurableTime_HourMinutes::read(std::istream& in, std::ostream& err)
{
    int f[2];
    if (!read_fields(in, ':', f, 2))
        return fail(in, err, "unable to read time (should be HH:MM)");
    set(Timestamp(f[0] * 3600.0 + f[1] * 60.0));
}

void ConfigurableTime_HourMinutes::write(std::ostream& out) const
{
    Digits{out}(get().hour())(':')(get().min());
}

void ConfigurableTime_HourMinutes::write_doctype(std::ostream& out) const
{
    out << "HH:MM";
}

void ConfigurableDate::read(std::istream& in, std::ostream& err)
{
    int f[3];
    if (!read_fields(in, '-', f, 3))
        return fail(in, err, "unable to read date (should be YYYY-MM-DD)");
    set(Timestamp(f[0], f[1], f[2], 0, 0, 0));
}

void ConfigurableDate::write(std::ostream& out) const
{
    Digits{out}(get().year(), 4)('-')(get().month())('-')(get().day());
}

void ConfigurableDate::write_doctype(std::ostream& out) const
{
    out << "YYYY-MM-DD";
}

void ConfigurableDate_YearMonth::read(std::istream& in, std::ostream& err)
{
    int f[2];
    if (!read_fields(in, '-', f, 2))
        return fail(in, err, "unable to read date (should be YYYY-MM)");
    set(Timestamp(f[0], f[1], 0, 0, 0, 0));
}

void ConfigurableDate_YearMonth::write(std::ostream& out) const
{
    Digits{out}(get().year(), 4)('-')(get().month());
}

void ConfigurableDate_YearMonth::write_doctype(std::ostream& out) const
{
    out << "YYYY-MM";
}

// --- ConfigurableMultipleChoice ---

ConfigurableMultipleChoice::ConfigurableMultipleChoice(const std::string& name,
                                                       const std::vector<std::string>& choices,
                                                       int default_index)
    : Configurable(name), _choices(&choices), _index(default_index), _default(default_index)
{
}

void ConfigurableMultipleChoice::set(int index)
{
    if (index < 0 || index == _index || size_t(index) >= _choices->size())
        return;
    _index = index;
    _set_changed(true);
}

void ConfigurableMultipleChoice::read(std::istream& in, std::ostream& err)
{
    std::string text;
    if (!read_plain_rest(in, text) && !std::getline(in, text, '\0'))
        return fail(in, err, "unable to read choice");
    for (size_t i = 0; i < _choices->size(); ++i) {
        if ((*_choices)[i] == text) {
            set(int(i));
            return;
        }
    }
    err << "invalid option: " << text << '\n';
}

bool ConfigurableMultipleChoice::_read(const std::string& text, XMLWriter& writer)
{
    return read_text(*this, typeid(ConfigurableMultipleChoice), text, writer, [this](const char* start, const char* end) {
        const std::string_view rest(start, size_t(end - start));
        std::optional<int> index;
        if (plain_rest(start, end))
            for (size_t i = 0; i < _choices->size() && !index; ++i)
                if ((*_choices)[i] == rest)
                    index = int(i);
        return index;
    });
}

const std::string& ConfigurableMultipleChoice::get_string() const
{
    static const std::string none;
    return _index >= 0 && size_t(_index) < _choices->size() ? (*_choices)[_index] : none;
}

void ConfigurableMultipleChoice::write(std::ostream& out) const
{
    put_text(out, get_string());
}

void ConfigurableMultipleChoice::write_doctype(std::ostream& out) const
{
    for (size_t i = 0; i < _choices->size(); ++i)
        out << (i ? "|" : "") << (*_choices)[i];
}
