#ifndef FOUNDATION_TIMESTAMP_H
#define FOUNDATION_TIMESTAMP_H

#include <iosfwd>
#include <string>

/// A date and time: seconds since 1989-01-01 00:00:00 as a double, with no time zone.
/// An instrument's clock time goes in and comes out as it stands.
///
/// The calendar runs from 1989 to 2099 in four-year cycles of 1461 days whose fourth year
/// (1992, 1996, ..., 2000, ...) is the leap year; there is no century rule.
///
/// Text form: "YYYY-MM-DD HH:MM:SS" with the seconds' fraction as far as six significant
/// digits need it ("00", "09.999", "59"). The stream word at _format_index() changes it:
/// - _fmt_separators: the separators come from the word's low bytes, byte 0 the time
///   separator, byte 1 the date separator, byte 2 the date-to-time separator; 0 means none,
///   and then that part is one number (YYYYMMDD, HHMMSS.SS);
/// - _fmt_quotes: the text stands in double quotes.
class Timestamp {
public:
    static constexpr long _fmt_separators = 1L << 24;
    static constexpr long _fmt_quotes = 1L << 25;

    /// `seconds` since the base date.
    Timestamp(double seconds = 0);
    /// From calendar fields. A year below 100 is completed (89 is 1989, 88 is 2088). Months
    /// run on into the next year (13 is January) or back (0 is December of the year before);
    /// day, hour and minute are not range checked (day 0 is the last day of the month before).
    /// A year outside 1989..2099 gives 0.
    Timestamp(int year, int month, int day, int hour, int minute, double second);

    Timestamp operator+(const Timestamp& other) const { return Timestamp(_t + other._t); }
    Timestamp operator-(const Timestamp& other) const { return Timestamp(_t - other._t); }

    /// Seconds since the base date.
    double get() const { return _t; }
    /// Seconds within the minute, with fraction.
    double sec() const;
    int min() const;
    int hour() const;
    /// 1 is Sunday, the weekday of the base date.
    int weekDay() const;
    int year() const;
    bool isLeap() const;
    /// 1 is the first of January.
    int yearDay() const;
    /// 1 is January.
    int month() const;
    int day() const;

    /// Name of the local time zone; empty while none is known.
    static std::string local_timezone_name();
    /// Shifted by the local zone's offset; unchanged while none is known.
    Timestamp convert_local_to_utc() const;
    Timestamp convert_utc_to_local() const;

    /// Writes the text form.
    void _write(std::ostream& os) const;
    /// Reads the text form. Only a bad date leaves the stream failed (and the value as it
    /// was); a missing or partial time counts the missing fields as 0, and text after the
    /// date that is no time is left in the stream. A year out of range gives 0.
    void _read(std::istream& is);

    /// Index of the stream word that holds the format bits, allocated on first use.
    static int _format_index();

private:
    static void _init_tz();

    double _t;

    static int _xalloc_index;       // -1 until first use
    static double _tz_offset;       // local time less UTC, in seconds
    static std::string _tz_name;
    static bool _is_tz_inited;
};

std::ostream& operator<<(std::ostream& os, const Timestamp& t);
std::istream& operator>>(std::istream& is, Timestamp& t);

#endif
