#include "foundation/timestamp.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

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

// Short texts read with the missing fields zero and are written in full.
TEST(Timestamp, ReadsAndWritesTable) {
    const struct {
        const char* text;
        double seconds;
        const char* written;  // null: the text itself
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
    };
    for (const auto& row : rows) {
        bool good;
        EXPECT_DOUBLE_EQ(Read(row.text, 0, &good).get(), row.seconds) << row.text;
        EXPECT_TRUE(good) << row.text;
        EXPECT_EQ(Write(Timestamp(row.seconds)), row.written ? row.written : row.text);
    }
}

TEST(Timestamp, OnlyBadDateFailsTheStream) {
    const struct {
        const char* text;
        bool good;
        double seconds;  // when good
    } cases[] = {
        {"", false, 0}, {"junk", false, 0}, {"1989", false, 0}, {"1989-01", false, 0},
        {"1989/01/01 00:00:00", false, 0}, {"1989-01/01", false, 0},
        {"2100-01-01 00:00:00", true, 0},  // out of range is no error
        {"1988-12-31 00:00:00", true, 0},
        {"1989-01-02T12:00:00", true, 86400},  // the time is dropped, not the date
        {"1989-01-02 12:xx", true, 86400 + 12 * 3600},
    };
    for (const auto& c : cases) {
        bool good;
        Timestamp t = Read(c.text, 0, &good);
        EXPECT_EQ(good, c.good) << c.text;
        EXPECT_EQ(t.get(), c.good ? c.seconds : -1) << c.text;  // failure leaves the value
    }
}

TEST(Timestamp, TextAfterTheTimeStaysInTheStream) {
    std::istringstream is("1990-01-01 00:00:01 1989-01-02T00:00:00");
    Timestamp a, b;
    std::string rest;
    is >> a >> b >> rest;
    EXPECT_EQ(a.get(), 31536001);
    EXPECT_EQ(b.get(), 86400);
    EXPECT_EQ(rest, "T00:00:00");
}

TEST(Timestamp, Quotes) {
    long quotes = Timestamp::_fmt_quotes;
    EXPECT_EQ(Write(Timestamp(99705600.5), quotes), "\"1992-02-29 00:00:00.5\"");
    EXPECT_EQ(Read("  \"1992-02-29 00:00:00.5\"", quotes).get(), 99705600.5);
    EXPECT_EQ(Read("1992-02-29 00:00:01", quotes).get(), 99705601);  // quotes are optional

    std::istringstream is("\"1992-02-29 00:00:00\"x");
    is.iword(Timestamp::_format_index()) = quotes;
    Timestamp t;
    is >> t;
    EXPECT_EQ(t.get(), 99705600);
    EXPECT_EQ(is.get(), 'x');  // the closing quote is taken
}

TEST(Timestamp, Separators) {
    const double seconds = 99705600 + 12 * 3600 + 34 * 60 + 56.5;
    const struct {
        long format;
        const char* text;
    } cases[] = {
        {Separators(0, 0, ' '), "19920229 123456.5"}, {Separators(';', '/', 'T'), "1992/02/29T12;34;56.5"},
        {Separators(0, '-', ' '), "1992-02-29 123456.5"},
        {Separators(':', '-', ' ') | Timestamp::_fmt_quotes, "\"1992-02-29 12:34:56.5\""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Write(Timestamp(seconds), c.format), c.text);
        EXPECT_DOUBLE_EQ(Read(c.text, c.format).get(), seconds) << c.text;
    }
    // The low bytes count only with the separator bit.
    EXPECT_EQ(Write(Timestamp(seconds), Separators(';', '/', 'T') & ~Timestamp::_fmt_separators),
              "1992-02-29 12:34:56.5");
}

TEST(Timestamp, FieldConstructorCompletesAndRunsOn) {
    const struct {
        int year, month, day, hour, minute;
        double second, seconds;
    } cases[] = {
        {89, 1, 1, 0, 0, 0, 0},                  // 89 is 1989
        {0, 1, 1, 0, 0, 0, 347068800},           // 0 is 2000
        {1988, 12, 31, 23, 59, 59, 0},           // before the base
        {2100, 1, 1, 0, 0, 0, 0},                // after the last year
        {88, 12, 31, 0, 0, 0, 3155673600},       // 88 is 2088
        {2099, 12, 31, 0, 0, 0, 3502742400},     // the last year
        {1989, 13, 1, 0, 0, 0, 31536000},        // month 13 is January of the next year
        {1990, 0, 1, 0, 0, 0, 28857600},         // month 0 is December of the one before
        {1989, 3, 0, 0, 0, 0, 5097600 - 86400},  // day 0 is the last of the month before
        {1989, 1, 32, 0, 0, 0, 2678400},         // day 32 of January is February 1st
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
    int weekday = 1;
    for (int y = 1989; y <= 2099; ++y) {
        bool leap = y % 4 == 0;
        int yday = 0;
        for (int m = 1; m <= 12; ++m) {
            for (int d = 1; d <= month_days[m - 1] + (m == 2 && leap); ++d, expected += 86400) {
                Timestamp t(y, m, d, 12, 1, 1.25);
                ASSERT_EQ(t.get(), expected) << y << "-" << m << "-" << d;
                ASSERT_EQ(t.year(), y);
                ASSERT_EQ(t.month(), m);
                ASSERT_EQ(t.day(), d);
                ASSERT_EQ(t.yearDay(), ++yday);
                ASSERT_EQ(t.isLeap(), leap);
                ASSERT_EQ(t.weekDay(), weekday);
                ASSERT_EQ(t.hour(), 12);
                ASSERT_EQ(t.min(), 1);
                ASSERT_EQ(t.sec(), 1.25);
                weekday = weekday % 7 + 1;
            }
        }
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

TEST(Timestamp, NoTimeZoneIsKnown) {
    EXPECT_EQ(Timestamp::local_timezone_name(), "");
    EXPECT_EQ(Timestamp(1234.5).convert_local_to_utc().get(), 1234.5);
    EXPECT_EQ(Timestamp(1234.5).convert_utc_to_local().get(), 1234.5);
}

}  // namespace
