// The value rules of the leaves: parsing, printing, clamping, error texts and change marks.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "test_tree.h"
#include "xml/xml_writer.h"

namespace {

// Reads `text` into `leaf` the way a message does: the error text, "" for none, and the failbit.
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

// The value, or the type text; a leaf that fills with zeros must put the blank back.
std::string written(const Configurable& leaf, bool type = false)
{
    std::ostringstream out;
    type ? leaf.write_doctype(out) : leaf.write(out);
    EXPECT_EQ(out.fill(), ' ');
    return out.str();
}

std::string type_text(const Configurable& leaf) { return written(leaf, true); }

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

// Short decimals take a fast path of their own; it must round every one as the stream does.
TEST(Leaves, ShortDecimalsRoundAsTheStreamRounds)
{
    std::mt19937 random(7);
    for (int n = 0; n < 20000; ++n) {
        std::string text = random() % 2 ? "-" : "";
        text += std::to_string(random() % 100000000 >> random() % 27);
        if (const int fraction = int(random() % 13); fraction > 0) {
            text += '.';
            for (int i = 0; i < fraction; ++i)
                text += char('0' + random() % 10);
        }
        ConfigurableFloat f1("f", 1), f2("f", 1);
        ConfigurableDouble d1("d", 1), d2("d", 1);
        std::ostringstream reply;
        XMLWriter writer(reply, false);
        f1._read(text, writer);
        d1._read(text, writer);
        read_into(f2, text);
        read_into(d2, text);
        ASSERT_EQ(f1.get(), f2.get()) << text;
        ASSERT_EQ(d1.get(), d2.get()) << text;
        ASSERT_EQ(std::signbit(f1.get()), std::signbit(f2.get())) << text;
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
    for (int64_t value : {int64_t(0), int64_t(-42), INT64_MIN, INT64_MAX}) {
        std::ostringstream i;
        i << value;
        EXPECT_EQ(written(ConfigurableInteger("i", value)), i.str()) << value;
    }
}

// Out of range clamps, also in strict mode, where only NaN (neither above min nor below max) throws;
// choices out of range are ignored.
TEST(Leaves, RangeModes)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    ConfigurableFloat clamp("c", 5, 0, 10, false), strict("s", 5, 0, 10, true), free("f", 5);
    for (ConfigurableFloat* f : {&clamp, &strict}) {
        f->set(25);
        EXPECT_EQ(f->get(), 10);
        f->set(-3);
        EXPECT_EQ(f->get(), 0);
    }
    try {
        strict.set(nan);
        ADD_FAILURE() << "NaN accepted";
    } catch (const std::range_error& e) {
        EXPECT_STREQ(e.what(), "ConfigurableFloat: range error");
    }
    ConfigurableDouble strict_double("s", 5, 0, 10, true);
    EXPECT_THROW(strict_double.set(std::nan("")), std::range_error);
    free.set(nan);
    free._set_changed(false);
    free.set(nan);
    EXPECT_TRUE(free.has_changed());  // NaN equals nothing, so it always changes
    EXPECT_EQ(type_text(clamp), "float:5;0...10");
    EXPECT_EQ(type_text(ConfigurableFloat("f", 5)), "float:5");
    EXPECT_EQ(type_text(ConfigurableInteger("i", 3, 0, 10)), "integer:3;0...10");
    EXPECT_EQ(type_text(ConfigurableInteger("i", 7)), "integer:7");
    EXPECT_EQ(type_text(ConfigurableInteger("i", 7, 1)), "integer:7;1...9223372036854775807");
    EXPECT_EQ(type_text(ConfigurableBool("b", true)), "true|false");

    ConfigurableMultipleChoice choice("c", lunch_choices(), 1);  // indexes out of the table are ignored
    choice._set_changed(false);
    for (int index : {-1, 1, 6, 100})
        choice.set(index);
    EXPECT_EQ(choice.get(), 1);
    EXPECT_FALSE(choice.has_changed());
    choice.set(4);
    EXPECT_EQ(written(choice), "tire");
    choice.set_to_default();
    EXPECT_EQ(choice.get_string(), "banana");
}

// A bad number is reported and leaves the old value; only a missing one fails the stream, or a bad
// integer or time. Integers are clamped to their range, times to zero.
TEST(Leaves, BadNumbersAndBools)
{
    ConfigurableFloat f("f", 2.5f);
    ConfigurableDouble d("d", 1);
    ConfigurableBool b("b", false);
    ConfigurableInteger i("i", 3, 0, 10);
    ConfigurableTimeT t("t", 0);
    const struct {
        Configurable* leaf;
        const char *text, *printed, *error;
        bool failed;
    } rows[] = {
        {&f, "junk", "2.5", "unable to read float", false},  // the element goes on
        {&f, "infinity", "2.5", "unable to read float", false}, {&f, "   ", "2.5", "unable to read float", true},
        {&d, "x", "1", "unable to read double", false},
        {&b, "true", "true", "", false}, {&b, "false", "false", "", false}, {&b, "1", "false", "invalid bool", false},
        {&b, "True", "false", "invalid bool", false}, {&b, "", "false", "unable to read bool", true},
        {&i, "25", "10", "", false}, {&i, "-4 and more", "0", "", false},
        {&i, "x", "0", "unable to read integer", true},
        {&t, "1000", "1000", "", false}, {&t, "-5", "0", "", false}, {&t, "now", "0", "unable to read time_t", true},
    };
    for (const auto& row : rows) {
        row.leaf->_set_changed(false);
        const std::string before = written(*row.leaf);
        const ReadResult r = read_into(*row.leaf, row.text);
        EXPECT_EQ(written(*row.leaf), row.printed) << row.text;
        EXPECT_EQ(r.error, row.error) << row.text;
        EXPECT_EQ(r.failed, row.failed) << row.text;
        EXPECT_EQ(row.leaf->has_changed(), before != row.printed) << row.text;
    }
}

// Empty text is never read, so a message cannot empty a string.
TEST(Leaves, Strings)
{
    TestTree tree;
    ConfigurableString name("name", "first");
    tree.add(name);
    EXPECT_EQ(reply(tree, "<L><name></name><name>&query_item;</name></L>"), "first");
    EXPECT_EQ(reply(tree, "<L><name>a &lt;b&gt;</name><name>&query_item;</name></L>"), "a &lt;b&gt;");
    EXPECT_EQ(name.get(), "a <b>");
    EXPECT_EQ(type_text(name), "string:first");
}

// Times, dates and texts; their read errors end with a line end and fail the stream.
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
        {&string, "  spaces are kept ", "  spaces are kept ", "string"},
        {&choice, "", nullptr, "unable to read choice\n"}, {&string, "", nullptr, "unable to read string\n"},
    };
    for (const auto& row : rows) {
        const ReadResult r = read_into(*row.leaf, row.text);
        EXPECT_EQ(r.failed, !row.printed) << row.text;
        EXPECT_EQ(r.error, row.printed ? "" : row.type_or_error) << row.text;
        if (row.printed) {
            EXPECT_EQ(written(*row.leaf), row.printed) << row.text;
            EXPECT_EQ(type_text(*row.leaf), row.type_or_error);
        }
    }
    EXPECT_EQ(time.get().get(), 3723);
    EXPECT_EQ(hm.get().get(), 7 * 3600 + 5 * 60);  // seconds from midnight
    EXPECT_EQ(date.get().get(), 383788800);
}

}  // namespace
