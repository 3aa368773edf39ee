// The value rules of the leaves: parsing, printing, clamping, error texts and change marks.

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include "test_tree.h"
#include "xml/xml_writer.h"

namespace {

// Reads `text` into `leaf` the way a message does and returns the error text, "" for none.
struct ReadResult {
    std::string error;
    bool failed;
};

ReadResult read_into(Configurable& leaf, const std::string& text)
{
    std::istringstream in(text);
    std::ostringstream err;
    leaf.read(in, err);
    return {err.str(), in.fail()};
}

std::string written(const Configurable& leaf)
{
    std::ostringstream out;
    leaf.write(out);
    return out.str();
}

std::string type_text(const Configurable& leaf)
{
    std::ostringstream out;
    leaf.write_doctype(out);
    return out.str();
}

// Text from a message is read through the framework's own buffer, where plain numbers and words skip
// the locale's parsers: every form must come out as a read from any other stream gives it.
TEST(Leaves, MessageReadsAgreeWithStreamReads)
{
    const char* texts[] = {
        "12.5", " 12.5 ", "-0", "007", "12.", "1e", "1e5", "+5", "-", ".5", "1.5abc", "12 34",
        "3.4028236e38", "340282360000000000000000000000000000000", "0.00000000000000000000000000000000000000000001",
        "99999999999999999999", "-9223372036854775808", "4.35", "0.1", "inf", "junk",
        "true", " false ", "true false", "truest", "",
    };
    for (const char* text : texts) {
        ConfigurableFloat f1("f", 1), f2("f", 1);
        ConfigurableDouble d1("d", 1), d2("d", 1);
        ConfigurableInteger i1("i", 1), i2("i", 1);
        ConfigurableBool b1("b", false), b2("b", false);
        ConfigurableString s1("s", "x"), s2("s", "x");
        static const std::vector<std::string> choices{"true", " false ", "12 34"};
        ConfigurableMultipleChoice c1("c", choices, 0), c2("c", choices, 0);
        for (auto [by_message, by_stream] : {std::pair<Configurable*, Configurable*>{&f1, &f2}, {&d1, &d2},
                                             {&i1, &i2}, {&b1, &b2}, {&s1, &s2}, {&c1, &c2}}) {
            std::ostringstream reply;
            XMLWriter writer(reply, false);
            const bool ok = by_message->_read(text, writer);
            const ReadResult expected = read_into(*by_stream, text);
            EXPECT_EQ(ok, !expected.failed) << text;
            EXPECT_EQ(written(*by_message), written(*by_stream)) << text;
            EXPECT_EQ(reply.str().empty(), expected.error.empty()) << text;
        }
        EXPECT_EQ(f1.get(), f2.get()) << text;
        EXPECT_EQ(d1.get(), d2.get()) << text;
        EXPECT_EQ(s1.get(), s2.get()) << text;
        EXPECT_EQ(c1.get(), c2.get()) << text;
    }
}

// Leaves print plain streams without the locale's printer: the text must be what operator<< gives.
TEST(Leaves, PrintedAsTheStreamPrints)
{
    const double reals[] = {0.1, 1234567, 1e-5, 1e-4, -0.00012345678, -0.0, 0.1234, 12.3456, 99999.95, 123456.5,
                            999999.5, 3.4e38, 1e-40, 1e300,
                            std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()};
    for (double value : reals) {
        std::ostringstream f, d;
        f << float(value);
        d << value;
        EXPECT_EQ(written(ConfigurableFloat("f", float(value))), f.str()) << value;
        EXPECT_EQ(written(ConfigurableDouble("d", value)), d.str()) << value;
    }
    for (int64_t value : {int64_t(0), int64_t(-42), std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max()}) {
        std::ostringstream i;
        i << value;
        EXPECT_EQ(written(ConfigurableInteger("i", value)), i.str()) << value;
    }
}

TEST(Leaves, RangeModes)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    ConfigurableFloat clamp("c", 5, 0, 10, false);
    clamp.set(25);
    EXPECT_EQ(clamp.get(), 10);
    clamp.set(-3);
    EXPECT_EQ(clamp.get(), 0);
    EXPECT_EQ(type_text(clamp), "float:5;0...10");

    ConfigurableFloat strict("s", 5, 0, 10, true);
    strict.set(25);  // out of range clamps: only NaN is neither above min nor below max
    EXPECT_EQ(strict.get(), 10);
    try {
        strict.set(nan);
        ADD_FAILURE() << "NaN accepted";
    } catch (const std::range_error& e) {
        EXPECT_STREQ(e.what(), "ConfigurableFloat: range error");
    }
    ConfigurableDouble strict_double("s", 5, 0, 10, true);
    EXPECT_THROW(strict_double.set(std::nan("")), std::range_error);

    ConfigurableFloat free("f", 5);
    EXPECT_EQ(type_text(free), "float:5");
    free._set_changed(false);
    free.set(nan);
    EXPECT_TRUE(free.has_changed());  // NaN equals nothing, so it always changes
    free._set_changed(false);
    free.set(nan);
    EXPECT_TRUE(free.has_changed());
}

TEST(Leaves, Integers)
{
    ConfigurableInteger limited("i", 3, 0, 10);
    EXPECT_EQ(read_into(limited, "25").error, "");
    EXPECT_EQ(limited.get(), 10);
    EXPECT_EQ(read_into(limited, "-4 and more").error, "");
    EXPECT_EQ(limited.get(), 0);
    ReadResult bad = read_into(limited, "x");
    EXPECT_EQ(bad.error, "unable to read integer");
    EXPECT_TRUE(bad.failed);
    EXPECT_EQ(type_text(limited), "integer:3;0...10");
    EXPECT_EQ(type_text(ConfigurableInteger("i", 7)), "integer:7");
    EXPECT_EQ(type_text(ConfigurableInteger("i", 7, 1)), "integer:7;1...9223372036854775807");

    ConfigurableTimeT t("t", 0);
    read_into(t, "1000");
    EXPECT_EQ(written(t), "1000");
    std::tm local{};  // 2024-01-15 10:30:00 local time
    local.tm_year = 2024 - 1900, local.tm_mday = 15, local.tm_hour = 10, local.tm_min = 30, local.tm_isdst = -1;
    const std::time_t expected = std::mktime(&local);
    EXPECT_EQ(read_into(t, "2024-01-15 10:30:00").error, "");
    EXPECT_EQ(written(t), std::to_string(expected));
    read_into(t, "-5");
    EXPECT_EQ(t.get(), 0);
    EXPECT_EQ(read_into(t, "now").error, "unable to read time_t");
}

// A bad number is reported and leaves the old value; only a missing one fails the stream.
TEST(Leaves, BadNumbersAndBools)
{
    const struct {
        const char* text;
        const char* printed;
        const char* error;
        bool failed;
    } rows[] = {
        {"junk", "2.5", "unable to read float", false},  // the element goes on
        {"infinity", "2.5", "unable to read float", false}, {"   ", "2.5", "unable to read float", true},
        {"true", "true", "", false}, {"false", "false", "", false}, {"True", "false", "invalid bool", false},
        {"1", "false", "invalid bool", false}, {"", "false", "unable to read bool", true},
    };
    for (const auto& row : rows) {
        ConfigurableFloat f("f", 2.5f);
        ConfigurableBool b("b", false);
        Configurable& leaf = std::string(row.printed) == "2.5" ? static_cast<Configurable&>(f) : b;
        leaf._set_changed(false);
        const ReadResult r = read_into(leaf, row.text);
        EXPECT_EQ(written(leaf), row.printed) << row.text;
        EXPECT_EQ(r.error, row.error) << row.text;
        EXPECT_EQ(r.failed, row.failed) << row.text;
        EXPECT_EQ(leaf.has_changed(), std::string(row.printed) == "true") << row.text;
    }
    ConfigurableDouble d("d", 1);
    EXPECT_EQ(read_into(d, "x").error, "unable to read double");
    EXPECT_EQ(type_text(ConfigurableBool("b", true)), "true|false");
}

TEST(Leaves, Strings)
{
    ConfigurableString s("s", "");
    read_into(s, "  spaces are kept ");
    EXPECT_EQ(s.get(), "  spaces are kept ");
    EXPECT_EQ(type_text(s), "string");
    EXPECT_EQ(type_text(ConfigurableString("s", "def")), "string:def");

    ConfigurableStringProxyReadOnly proxy("p", s);
    EXPECT_EQ(written(proxy), "  spaces are kept ");
    read_into(proxy, "ignored");
    EXPECT_EQ(s.get(), "  spaces are kept ");

    // Empty text is never read, so a message cannot empty a string.
    TestTree tree;
    ConfigurableString name("name", "first");
    tree.add(name);
    reply(tree, "<L><name></name></L>");
    EXPECT_EQ(name.get(), "first");
    EXPECT_EQ(reply(tree, "<L><name>a &lt;b&gt;</name><name>&query_item;</name></L>"), "a &lt;b&gt;");
    EXPECT_EQ(name.get(), "a <b>");
}

// Read errors of the times, dates and texts end with a line end and fail the stream.
TEST(Leaves, TimesAndDates)
{
    ConfigurableTimestamp stamp("ts", Timestamp(0.0));
    ConfigurableTime time("t", Timestamp(0.0));
    ConfigurableTime_HourMinutes hm("hm", Timestamp(0.0));
    ConfigurableDate date("d", Timestamp(0.0));
    ConfigurableDate_YearMonth ym("ym", Timestamp(0.0));
    ConfigurableMultipleChoice choice("c", lunch_choices(), 0);
    ConfigurableString string("s", "");
    const struct {
        Configurable* leaf;
        const char* text;
        const char* printed;  // null: an error
        const char* type_or_error;
    } rows[] = {
        {&stamp, "2001-03-01 12:30:09.5", "2001-03-01 12:30:09.5", "YYYY-MM-DD HH:MM:SS.SS"},
        {&time, "12:34:56", "12:34:56", "HH:MM:SS"}, {&time, "1:2:3", "01:02:03", "HH:MM:SS"},
        {&hm, "07:05", "07:05", "HH:MM"}, {&date, "2001-03-01", "2001-03-01", "YYYY-MM-DD"},
        {&ym, "2001-02", "2001-01", "YYYY-MM"},  // day 0: the last day of the month before
        {&stamp, "later", nullptr, "unable to read Timestamp\n"},
        {&time, "12-34-56", nullptr, "unable to read time (should be HH:MM:SS)\n"},
        {&time, "12:34", nullptr, "unable to read time (should be HH:MM:SS)\n"},
        {&hm, "12.30", nullptr, "unable to read time (should be HH:MM)\n"},
        {&date, "2001/03/01", nullptr, "unable to read date (should be YYYY-MM-DD)\n"},
        {&ym, "March", nullptr, "unable to read date (should be YYYY-MM)\n"},
        {&choice, "", nullptr, "unable to read choice\n"}, {&string, "", nullptr, "unable to read string\n"},
    };
    for (const auto& row : rows) {
        const ReadResult r = read_into(*row.leaf, row.text);
        EXPECT_EQ(r.failed, !row.printed) << row.text;
        if (!row.printed) {
            EXPECT_EQ(r.error, row.type_or_error) << row.text;
            continue;
        }
        EXPECT_EQ(r.error, "") << row.text;
        std::ostringstream out;
        row.leaf->write(out);
        EXPECT_EQ(out.str(), row.printed) << row.text;
        EXPECT_EQ(out.fill(), ' ');
        EXPECT_EQ(type_text(*row.leaf), row.type_or_error);
    }
    EXPECT_EQ(time.get().get(), 3723);
    EXPECT_EQ(hm.get().get(), 7 * 3600 + 5 * 60);  // seconds from midnight
    EXPECT_EQ(date.get().get(), 383788800);
}

TEST(Leaves, ChoicesIgnoreIndexesOutOfTheTable)
{
    ConfigurableMultipleChoice choice("c", lunch_choices(), 1);
    choice._set_changed(false);
    for (int index : {-1, 1, 6, 100}) {
        choice.set(index);
        EXPECT_EQ(choice.get(), 1);
        EXPECT_FALSE(choice.has_changed());
    }
    choice.set(4);
    EXPECT_EQ(written(choice), "tire");
    EXPECT_TRUE(choice.has_changed());
    choice.set_to_default();
    EXPECT_EQ(choice.get_string(), "banana");
}

}  // namespace
