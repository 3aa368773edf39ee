#include "foundation/timestamp.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

namespace {

Timestamp Read(const std::string& text, long format = 0, bool* good = nullptr) {
    std::istringstream is(text);
    is.iword(Timestamp::_format_index()) = format;
    Timestamp t(-1);
    is >> t;
    if (good)
        *good = !is.fail();
    return t;
}

std::string Write(const Timestamp& t, long format = 0) {
    std::ostringstream os;
    os.iword(Timestamp::_format_index()) = format;
    os << t;
    return os.str();
}

long Separators(char time, char date, char date_time) {
    return Timestamp::_fmt_separators | static_cast<unsigned char>(time) |
           static_cast<unsigned char>(date) << 8 | static_cast<unsigned char>(date_time) << 16;
}

// Short texts read with the missing fields zero and are written in full. Only a bad date fails the
// stream, and a failed read leaves the value (-1 here).
TEST(Timestamp, ReadsAndWrites) {
    const struct {
        const char* text;
        double seconds;
        const char* written;  // null: the text itself; "": not checked
    } rows[] = {
        {"1989-01-01 00:00:00", 0, nullptr},          {"1989-01-01 00:00:00.001", 0.001, nullptr},
        {"1989-01-01 00:00:09.999", 9.999, nullptr},  {"1989-01-01 00:59:59.999", 3599.999, nullptr},
        {"1989-01-02 00:00:00", 86400, nullptr},      {"1989-02-01 00:00:00", 2678400, nullptr},
        {"1989-03-01 00:00:00", 5097600, nullptr},    {"1990-01-01 00:00:00", 31536000, nullptr},
        {"1992-01-01 00:00:00", 94608000, nullptr},   {"1992-02-29 00:00:00", 99705600, nullptr},
        {"1992-03-01 00:00:00", 99792000, nullptr},   {"2000-01-01 00:00:00", 347068800, nullptr},
        {"2001-03-01 00:00:00", 383788800, nullptr},  {"2099-12-31 23:59:59.999", 3502828799.999, nullptr},
        {"1989-12-31 23:59", 31535940, "1989-12-31 23:59:00"}, {"1989-12-31 23", 31532400, "1989-12-31 23:00:00"},
        {"1989-12-31", 31449600, "1989-12-31 00:00:00"}, {"1989-01-01", 0, "1989-01-01 00:00:00"},
        {"", -1, ""}, {"junk", -1, ""}, {"1989", -1, ""}, {"1989-01", -1, ""}, {"1989/01/01 00:00:00", -1, ""},
        {"1989-01/01", -1, ""},
        {"2100-01-01 00:00:00", 0, ""}, {"1988-12-31 00:00:00", 0, ""},  // out of range is no error
        {"1989-01-02T12:00:00", 86400, ""},  // the time is dropped, not the date
        {"1989-01-02 12:xx", 86400 + 12 * 3600, ""},
    };
    for (const auto& row : rows) {
        bool good;
        EXPECT_DOUBLE_EQ(Read(row.text, 0, &good).get(), row.seconds) << row.text;
        EXPECT_EQ(good, row.seconds != -1) << row.text;
        if (!row.written || *row.written) {
            EXPECT_EQ(Write(Timestamp(row.seconds)), row.written ? row.written : row.text);
        }
    }
}

// What follows a timestamp stays in the stream; quotes are optional, and a closing one is taken.
TEST(Timestamp, WhatFollowsStaysInTheStream) {
    std::istringstream is("1990-01-01 00:00:01 1989-01-02T00:00:00 \"1992-02-29 00:00:00\"x");
    is.iword(Timestamp::_format_index()) = Timestamp::_fmt_quotes;
    Timestamp a, b, c;
    std::string rest;
    is >> a >> b >> rest >> c;
    EXPECT_EQ(std::make_tuple(a.get(), b.get(), rest, c.get()),
              std::make_tuple(31536001.0, 86400.0, "T00:00:00", 99705600.0));
    EXPECT_EQ(is.get(), 'x');
}

TEST(Timestamp, Formats) {
    const double seconds = 99705600 + 12 * 3600 + 34 * 60 + 56.5;
    const struct {
        long format;
        const char* text;
    } cases[] = {
        {Separators(0, 0, ' '), "19920229 123456.5"}, {Separators(';', '/', 'T'), "1992/02/29T12;34;56.5"},
        {Separators(':', '-', ' ') | Timestamp::_fmt_quotes, "\"1992-02-29 12:34:56.5\""},
        {Separators(';', '/', 'T') & ~Timestamp::_fmt_separators, "1992-02-29 12:34:56.5"},  // the bytes need the bit
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Write(Timestamp(seconds), c.format), c.text);
        EXPECT_DOUBLE_EQ(Read(c.text, c.format).get(), seconds) << c.text;
    }
}

TEST(Timestamp, FieldConstructorCompletesAndRunsOn) {
    const struct {
        int year, month, day, hour, minute;
        double second, seconds;
    } cases[] = {
        {89, 1, 1, 0, 0, 0, 0}, {0, 1, 1, 0, 0, 0, 347068800}, {88, 12, 31, 0, 0, 0, 3155673600},  // 89 is 1989...
        {1988, 12, 31, 23, 59, 59, 0}, {2100, 1, 1, 0, 0, 0, 0},  // outside the calendar: its base
        {2099, 12, 31, 0, 0, 0, 3502742400},                        // the last year
        {1989, 13, 1, 0, 0, 0, 31536000}, {1990, 0, 1, 0, 0, 0, 28857600},  // months out of range run on
        {1989, 3, 0, 0, 0, 0, 5097600 - 86400}, {1989, 1, 32, 0, 0, 0, 2678400},  // and so do days
        {1989, 1, 1, 25, 61, 0, 25 * 3600 + 61 * 60},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Timestamp(c.year, c.month, c.day, c.hour, c.minute, c.second).get(), c.seconds)
            << c.year << "-" << c.month << "-" << c.day;
}

// Every day converts to fields and back, and the days (and weekdays, from Sunday 1989-01-01) follow on.
TEST(Timestamp, FieldsOfEveryDay) {
    const int month_days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    double expected = 43200 + 61.25;
    for (int y = 1989, weekday = 0; y <= 2099; ++y)
        for (int m = 1, yday = 0; m <= 12; ++m)
            for (int d = 1; d <= month_days[m - 1] + (m == 2 && y % 4 == 0); ++d, expected += 86400) {
                Timestamp t(y, m, d, 12, 1, 1.25);
                ASSERT_EQ(std::make_tuple(t.get(), t.year(), t.month(), t.day(), t.yearDay(), t.isLeap(),
                                          t.weekDay(), t.hour(), t.min(), t.sec()),
                          std::make_tuple(expected, y, m, d, ++yday, y % 4 == 0, weekday++ % 7 + 1, 12, 1, 1.25))
                    << y << "-" << m << "-" << d;
            }
}

TEST(Timestamp, ValuesOutsideTheCalendarDoNotBreakIt) {
    for (double v : {-1.0, 1e300, -1e300, 5e9}) {
        Timestamp t(v);
        EXPECT_EQ(t.year() * 10000 + t.month() * 100 + t.day(), 19890101) << v;
        EXPECT_FALSE(Write(t).empty());
    }
    EXPECT_EQ(Read("1989-01-01 99999999999:2147483647:1e999").year(), 1989);
    EXPECT_EQ(Read("2147483647-2147483647-2147483647 1:1:1").get(), 0);
    EXPECT_EQ(Read("-2147483648--2147483648--2147483648 1:1:1").get(), 0);
    EXPECT_EQ(Read("19890101 1e30", Separators(0, 0, ' ')).get(), 0);
}

}  // namespace
