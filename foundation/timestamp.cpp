#include "foundation/timestamp.h"

#include <cstdint>
#include <iomanip>
#include <istream>
#include <locale>
#include <ostream>
#include <sstream>

int Timestamp::_xalloc_index = -1;
double Timestamp::_tz_offset = 0;
std::string Timestamp::_tz_name;
bool Timestamp::_is_tz_inited = false;

namespace {

const int kMonthStart[2][13] = {
    {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
    {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366},
};

const uint32_t kDay = 86400;

// The calendar works on whole seconds as an unsigned 32-bit count, which reaches past 2099.
// Values it cannot hold (before the base, NaN) count as the base.
uint32_t Whole(double t) { return t >= 0 && t < 4294967296.0 ? static_cast<uint32_t>(t) : 0; }

// Day within the four-year cycle; 1095 to 1460 are the leap year.
int CycleDay(double t) { return static_cast<int>(Whole(t) / kDay % 1461); }

// Day in the year counted from 0 (the last day of a leap year is 365) and the month's
// index in kMonthStart.
int MonthIndex(int c, int& day_in_year) {
    day_in_year = c == 1460 ? 365 : c % 365;
    const int* start = kMonthStart[c >= 1095];
    int m = 11;
    while (start[m] > day_in_year)
        --m;
    return m;
}

struct Separators {
    char time = ':', date = '-', date_time = ' ';
    bool quotes;

    explicit Separators(std::ios_base& s) {
        long word = s.iword(Timestamp::_format_index());
        quotes = word & Timestamp::_fmt_quotes;
        if (word & Timestamp::_fmt_separators) {
            time = static_cast<char>(word & 0xff);
            date = static_cast<char>(word >> 8 & 0xff);
            date_time = static_cast<char>(word >> 16 & 0xff);
        }
    }
};

}  // namespace

Timestamp::Timestamp(double seconds) : _t(seconds) {}

Timestamp::Timestamp(int year, int month, int day, int hour, int minute, double second) : _t(0) {
    long long y = year;
    if (y < 100)
        y += y < 89 ? 2000 : 1900;
    long long m = static_cast<long long>(month) - 1;
    long long carry = m >= 0 ? m / 12 : (m - 11) / 12;  // floor, so m lands in 0..11
    m -= carry * 12;
    y += carry - 1989;
    if (y < 0 || y >= 111)
        return;
    // In double: day, hour and minute come unchecked from text.
    double days = static_cast<double>(day) + y * 365 + y / 4 + kMonthStart[y % 4 == 3][m];
    _t = hour * 3600.0 + (days - 1) * kDay + minute * 60.0 + second;
}

double Timestamp::sec() const { return _t - static_cast<double>(Whole(_t) / 60 * 60); }
int Timestamp::min() const { return static_cast<int>(Whole(_t) / 60 % 60); }
int Timestamp::hour() const { return static_cast<int>(Whole(_t) / 3600 % 24); }
int Timestamp::weekDay() const { return static_cast<int>(Whole(_t) / kDay % 7) + 1; }
bool Timestamp::isLeap() const { return CycleDay(_t) > 1094; }

int Timestamp::year() const {
    int c = CycleDay(_t);
    // 31557600 s is a year of 365.25 days: the count of whole years, cut to the cycle's start.
    int cycle_start = static_cast<int>(Whole(_t) / 31557600 & ~3u);
    return cycle_start + (c == 1460 ? 3 : c / 365) + 1989;
}

int Timestamp::yearDay() const {
    int c = CycleDay(_t);
    return c == 1460 ? 366 : c % 365 + 1;
}

int Timestamp::month() const {
    int day_in_year;
    return MonthIndex(CycleDay(_t), day_in_year) + 1;
}

int Timestamp::day() const {
    int c = CycleDay(_t), day_in_year;
    int m = MonthIndex(c, day_in_year);
    return day_in_year - kMonthStart[c >= 1095][m] + 1;
}

void Timestamp::_init_tz() {
    // Nothing knows the local zone yet: offset 0 and no name.
    _is_tz_inited = true;
}

std::string Timestamp::local_timezone_name() {
    if (!_is_tz_inited)
        _init_tz();
    return _tz_name;
}

Timestamp Timestamp::convert_local_to_utc() const {
    if (!_is_tz_inited)
        _init_tz();
    return Timestamp(_t - _tz_offset);
}

Timestamp Timestamp::convert_utc_to_local() const {
    if (!_is_tz_inited)
        _init_tz();
    return Timestamp(_t + _tz_offset);
}

int Timestamp::_format_index() {
    if (_xalloc_index < 0)
        _xalloc_index = std::ios_base::xalloc();
    return _xalloc_index;
}

void Timestamp::_write(std::ostream& os) const {
    Separators sep(os);
    // Built apart so that the caller's stream flags and locale can't change the wire form.
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::setfill('0');
    if (sep.quotes)
        text << '"';
    text << std::setw(4) << year();
    if (sep.date)
        text << sep.date;
    text << std::setw(2) << month();
    if (sep.date)
        text << sep.date;
    text << std::setw(2) << day();
    if (sep.date_time)
        text << sep.date_time;
    text << std::setw(2) << hour();
    if (sep.time)
        text << sep.time;
    text << std::setw(2) << min();
    if (sep.time)
        text << sep.time;
    double s = sec();
    if (s < 10)
        text << '0';
    text << s;
    if (sep.quotes)
        text << '"';
    os << text.str();
}

void Timestamp::_read(std::istream& is) {
    Separators sep(is);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    double second = 0;
    char c;

    if (sep.quotes && is >> c && c != '"')
        is.putback(c);

    if (sep.date) {
        auto separator = [&is, &sep] {
            char s;
            if (!is.get(s))
                return false;
            if (s != sep.date) {
                is.putback(s);
                is.setstate(std::ios::failbit);
                return false;
            }
            return true;
        };
        if (!(is >> year) || !separator() || !(is >> month) || !separator() || !(is >> day))
            return;
    } else {
        int date;
        if (!(is >> date))
            return;
        day = date % 100;
        month = date / 100 % 100;
        year = date / 10000;
    }

    // From here on a failure only ends the time early.
    if (sep.date_time && is.get(c) && c != sep.date_time) {
        is.putback(c);
        is.setstate(std::ios::failbit);
    }
    if (sep.time) {
        is >> hour;
        is.get(c);
        is >> minute;
        is.get(c);
        is >> second;
    } else {
        double t = 0;
        is >> t;
        if (t >= 0 && t < 1e9) {  // beyond that it is no time of day, and would not fit an int
            long hhmm = static_cast<long>(t) / 100;
            hour = static_cast<int>(hhmm / 100);
            minute = static_cast<int>(hhmm % 100);
            second = t - static_cast<double>(hhmm * 100);
        }
    }
    if (sep.quotes && is.get(c) && c != '"')
        is.putback(c);
    is.clear();

    *this = Timestamp(year, month, day, hour, minute, second);
}

std::ostream& operator<<(std::ostream& os, const Timestamp& t) {
    t._write(os);
    return os;
}

std::istream& operator>>(std::istream& is, Timestamp& t) {
    t._read(is);
    return is;
}
