// The record language: framing buffer, names, sums, classification, values and notification.

#include <gtest/gtest.h>

#include "link_test_util.h"

namespace {

TEST(DelimParser, DelimitersAndLines)
{
    DelimParser parser;
    parser.AddDelimiter("</endtag>");
    parser.AddDelimiter("</another>");
    parser.AddDelimiter("</last>");
    std::string out, delimiter;
    struct Step {
        const char* piece;
        const char* result;  // null: nothing complete
    } steps[] = {
        {"This is the first line</endtag>", "This is the first line</endtag>"},
        {"This is the second", nullptr},
        {"And the </endtag> third", "This is the secondAnd the </endtag>"},
        {"</last>", " third</last>"},
        {"</another>", "</another>"},
        {"This should never show up without an end tag!", nullptr},
    };
    for (const Step& step : steps) {
        parser.AppendRawData(std::string(step.piece));
        if (step.result) {
            ASSERT_TRUE(parser.GetNextDelimString(out, delimiter)) << step.piece;
            EXPECT_EQ(out, step.result);
        }
        EXPECT_FALSE(parser.GetNextDelimString(out)) << step.piece;
    }
    EXPECT_FALSE(DelimParser().GetNextDelimString(out));

    DelimParser lines;
    lines.AppendRawData(std::string("one\r\ntw"));
    ASSERT_TRUE(lines.GetNextStringToEOL(out));
    EXPECT_EQ(out, "one\r\n");
    EXPECT_FALSE(lines.GetNextStringToEOL(out));
    lines.AppendRawData(std::string("o\n\n"));
    ASSERT_TRUE(lines.GetNextStringToEOL(out));
    EXPECT_EQ(out, "two\n");
    ASSERT_TRUE(lines.GetNextStringToEOL(out));
    EXPECT_EQ(out, "\n");

    // Clearing also forgets how far the old data was searched.
    lines.AppendRawData(std::string("no line feed yet"));
    EXPECT_FALSE(lines.GetNextStringToEOL(out));
    lines.ClearRawData();
    lines.AppendRawData(std::string("a\nb\n"));
    ASSERT_TRUE(lines.GetNextStringToEOL(out));
    EXPECT_EQ(out, "a\n");
}

TEST(VariableString, Fields)
{
    struct Row {
        const char* text;
        int default_field;
        const char *host, *record, *variable, *joined;
    } rows[] = {
        {"x", 1, "", "x", "", ":x:"},
        {"x", 0, "x", "", "", "x::"},
        {"x", 2, "", "", "x", "::x"},
        {"h:DATA", 2, "h", "DATA", "", "h:DATA:"},
        {"h:DATA:CO2", 0, "h", "DATA", "CO2", "h:DATA:CO2"},
        {"a:b:c:d", 1, "a", "b", "c:d", "a:b:c:d"},
    };
    for (const Row& row : rows) {
        VariableString v(row.text, row.default_field);
        EXPECT_EQ(v.host, row.host) << row.text;
        EXPECT_EQ(v.record, row.record) << row.text;
        EXPECT_EQ(v.variable, row.variable) << row.text;
        EXPECT_EQ(v.str(), row.joined) << row.text;
    }
}

TEST(Stream, CheckSums)
{
    struct Row {
        std::string line;
        bool good;
    } rows[] = {
        {"DATA\t1\t2\t3\t212\n", true},
        {"DATA\t1\t2\t3\t212", true},
        {"DATA\t1\t2\t3\t213\n", false},
        {"DATA\t1\t2\t3\t 212\n", false},  // the blank is summed, so the sum moves
        {with_sum("DATA\t4\t5\t"), true},
        {"D\t" + std::to_string(int('D')) + "\n", true},  // a tab and two digits: the tab is not summed
        {"DA\n", false},
        {"\n", false},
        {"", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Connector::VerifyCheckSum(row.line), row.good) << row.line;
}

class StreamTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        connector = Connector::Factory(nullptr, name, "tolvan");
    }
    void TearDown() override { Connector::LookupAndUnRegisterListener(&listener); }

    std::string name;
    std::shared_ptr<Connector> connector;
    std::string log;
    RecordingListener listener{"L", log};
};

TEST_F(StreamTest, RecordKinds)
{
    struct Row {
        const char* name;
        RecordKind kind;
    } rows[] = {
        {"DATA", RecData},      {"DATASTAT", RecStat},    {"DATACLOCK", RecClock}, {"DATATEST", RecTest},
        {"DATAH", RecHeader},   {"DATAR", RecWaveform},  {"DATAEVENT", RecEvent}, {"DATAU", RecUnit},
        {"DATAFLRAW", RecRaw},  {"DAT", RecUnknown},     {"XDATA", RecUnknown},   {"DATAFOO", RecData},
        {"DATABARH", RecHeader}, {"DATABAR", RecData},
        {"DATASH", RecHeader},  {"DATAS", RecData},  // a new header turns a waveform into data
    };
    for (const Row& row : rows)
        EXPECT_EQ(connector->RecordType(row.name), row.kind) << row.name;
}

TEST_F(StreamTest, ValuesFollowTheHeader)
{
    connector->RegisterListener("DATA", &listener);
    connector->HandleData(with_sum("DATA\t1\t2\t3\t"));  // before its header: stored nowhere
    EXPECT_EQ(log, "");
    connector->HandleData("DATAH\tCO2\tSECONDS\tNANOSECONDS\tCHK\n");
    connector->HandleData(with_sum("DATA\t+1.5e2\t100\t500000000\t"));
    EXPECT_EQ(log, "L:Data:DATA L:Post:DATA ");
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:CO2"), 150);
    EXPECT_EQ(connector->VarStrings("DATA")[0], "+1.5e2");
    EXPECT_DOUBLE_EQ(connector->Time(), 100.5);
    EXPECT_EQ(Connector::LookupVarNumeric(name + ":DATA:SECONDS"), std::make_pair(100.5, 100.0));
    EXPECT_EQ(Connector::LookupVarNumeric("nobody:DATA:CO2"), std::make_pair(0.0, 0.0));
    EXPECT_EQ(Connector::LookupVarNumeric(name + ":DATA:NOSUCH"), std::make_pair(100.5, 0.0));

    // A short line keeps what it does not reach (its sum lands in the next cell); text that is
    // no number counts as 0.
    connector->HandleData(with_sum("DATA\tnan\t"));
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:CO2"), 0);
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:NANOSECONDS"), 500000000);
    EXPECT_EQ(connector->VarStrings("DATA")[0], "nan");

    log.clear();
    connector->HandleData("DATA\t1\t2\t3\t999\n");  // bad sum: dropped in silence
    EXPECT_EQ(log, "");
    EXPECT_EQ(connector->VarStrings("DATA")[0], "nan");

    connector->HandleData("DATAH\tA\tB\n");  // two fields: stored, never told
    log.clear();
    connector->HandleData(with_sum("DATA\t7\t8\t"));
    EXPECT_EQ(log, "");
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:B"), 8);

    connector->HandleData("DATAH\tA\tA\tB\n");
    connector->HandleData(with_sum("DATA\t1\t2\t3\t"));
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:A"), 2);  // repeated names share one number
}

// A field reads as a fresh stream reads it: trailing text ignored, 0 when it does not parse.
TEST_F(StreamTest, FieldsReadAsAStreamReadsThem)
{
    connector->HandleData("DATAH\tA\tB\tC\n");
    connector->HandleData("DATATESTH\tA\n");
    const struct {
        const char *record, *token;
        double value;
    } rows[] = {
        {"DATA", "-.5", -0.5}, {"DATA", "1e5e3", 1e5}, {"DATA", "1.5.3", 1.5}, {"DATA", "5-", 5}, {"DATA", "1e", 0},
        {"DATA", "1e+", 0},    {"DATA", "1.5E-", 0},   {"DATA", "+-5", 0},     {"DATA", "--5", 0},   {"DATA", "inf", 0},
        {"DATA", "1e999", 0},  {"DATA", "0x10", 0},    {"DATATEST", "0xFFFF", 65535}, {"DATATEST", "0x1g", 1},
        {"DATATEST", "2.5", 2.5}, {"DATATEST", "1e", 0}, {"DATATEST", "0x", 0},
        {"DATATEST", "0x10000", 0}, {"DATATEST", "0x10001", 0},  // past 16 bits the stream fails: no wrap, no clamp
    };
    for (const auto& row : rows) {
        connector->HandleData(with_sum(std::string(row.record) + "\t" + row.token + "\t1\t2\t"));
        EXPECT_EQ(connector->VarNumeric(name + ":" + row.record + ":A"), row.value) << row.record << " " << row.token;
        EXPECT_EQ(connector->VarStrings(row.record)[0], row.token);
    }
}

TEST_F(StreamTest, DiagnosticWordIsUnpacked)
{
    RecordingListener diag("D", log);
    connector->RegisterListener("DATASTAT", &listener);
    connector->RegisterListener("DATADIAG", &diag);
    connector->HandleData("DATADIAGH\tB0\tB1\tB2\tB3\n");
    connector->HandleData("DATASTATH\tX\tY\tDIAG\tZ\n");
    connector->HandleData(with_sum("DATASTAT\t1\t2\t5\t4\t"));
    EXPECT_EQ(log, "D:Data:DATADIAG D:Post:DATADIAG L:Data:DATASTAT L:Post:DATASTAT ");
    const std::vector<std::string> bits{"1", "0", "1", "0"};
    EXPECT_EQ(connector->VarStrings("DATADIAG"), bits);
    EXPECT_EQ(connector->VarNumeric(name + ":DATADIAG:B2"), 1);

    connector->HandleData("DATASTAT\t1\t2\t10\t4\t000\n");  // a bad sum leaves DATADIAG alone
    EXPECT_EQ(connector->VarStrings("DATADIAG"), bits);
}

TEST_F(StreamTest, AllListenersSeeDataBeforeAnyPostUpdate)
{
    RecordingListener second("M", log);
    connector->HandleData("DATAH\tA\tB\tC\n");
    connector->RegisterListener("DATA", &listener);
    connector->RegisterListener("DATA", &second);
    log.clear();
    connector->HandleData(with_sum("DATA\t1\t2\t3\t"));
    EXPECT_LT(log.rfind("Data:DATA"), log.find("Post:DATA")) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), ' '), 4) << log;
    Connector::LookupAndUnRegisterListener(&second);
}

TEST_F(StreamTest, LateListenersAreServedFromStoredHeaders)
{
    connector->HandleData("DATAH\tA\tB\tC\n");
    connector->HandleData("DATASTATH\tA\tB\tC\n");
    connector->RegisterListener("DATAH", &listener);
    EXPECT_EQ(log, "L:Header:DATAH ");
    log.clear();
    connector->RegisterListener("*H", &listener);
    EXPECT_EQ(log, "L:HeaderMatch:DATAH L:HeaderMatch:DATASTATH ");
    log.clear();
    connector->HandleData("DATAH\tA\tB\tD\n");  // re-announced
    EXPECT_EQ(log, "L:Header:DATAH L:HeaderMatch:DATAH ");
    EXPECT_EQ(connector->Header("DATAH").back(), "D");
}

TEST_F(StreamTest, EventsClocksUnitsWaveformsAndRaw)
{
    for (const char* record : {"DATAEVENT", "DATACLOCK", "DATAU", "DATAR", "DATAFLRAW"})
        connector->RegisterListener(record, &listener);
    connector->HandleData("DATAEVENT\tPOWER\ton at last\n");
    connector->HandleData("DATAEVENT\n");
    connector->HandleData("DATACLOCK\t2016-03-09T10:00:00\tignored\n");
    connector->HandleData("DATAU\tppm\tC\n");
    connector->HandleData("DATAR\tx\t1\t2\t3\t000\n");
    connector->HandleData("DATAFLRAW\tabcd\n");
    connector->HandleData("\n");
    connector->HandleData("XDATA\t1\n");
    EXPECT_EQ(log, "L:Event:DATAEVENT:POWER:on at last L:Event:DATAEVENT:: L:Time:DATACLOCK:2016-03-09T10:00:00 "
                   "L:Unit:DATAU L:Waveform:DATAR L:Raw:DATAFLRAW ");
    EXPECT_EQ(connector->LookupEvent("POWER"), "DATAEVENT\tPOWER\ton at last\n");
    EXPECT_EQ(connector->Unit("DATAU"), (std::vector<std::string>{"ppm", "C"}));
}

TEST(Registry, FactorySharesAndReplaces)
{
    auto first = Connector::Factory(nullptr, "reg-host:DATA", "morvik");
    auto second = Connector::Factory(nullptr, "reg-host", "tolvan");
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->Type(), "morvik");
    EXPECT_EQ(first->Host(), "reg-host");
    EXPECT_THROW(first->Doc_Tolvan(), std::bad_cast);
    EXPECT_NO_THROW(first->Doc_Morvik());
    first->Doc_Morvik().Conf().Name().set("kept");

    Connector* old = first.get();
    first.reset();
    second.reset();
    auto third = Connector::Factory(nullptr, "reg-host", "sarnel");
    EXPECT_NE(third.get(), old);
    EXPECT_EQ(third->Type(), "sarnel");
    EXPECT_EQ(third->Doc_Morvik().Conf().Name().get(), "");
    EXPECT_EQ(Connector::Factory(nullptr, "other", "quux")->Type(), "tolvan");
}

}  // namespace
