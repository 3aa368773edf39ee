// The record language: framing buffer, names, sums, classification, values, notification and logging;
// and the per-model types.

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTemporaryDir>

#include <fstream>
#include <iterator>
#include <tuple>

#include "link/connectortype.h"
#include "link/logdialog.h"
#include "link_test_util.h"

namespace {

// Lines end at a line feed; clearing also forgets how far the old data was searched.
TEST(DelimParser, Lines)
{
    DelimParser lines;
    std::string out;
    lines.AppendRawData(std::string("one\r\nno line feed yet"));
    ASSERT_TRUE(lines.GetNextStringToEOL(out));
    EXPECT_EQ(out, "one\r\n");
    EXPECT_FALSE(lines.GetNextStringToEOL(out));
    lines.ClearRawData();
    lines.AppendRawData(std::string("a\nb\n"));
    ASSERT_TRUE(lines.GetNextStringToEOL(out));
    EXPECT_EQ(out, "a\n");
}

TEST(VariableString, Fields)
{
    const struct {
        const char* text;
        int default_field;
        const char *host, *record, *variable, *joined;
    } rows[] = {
        {"x", 1, "", "x", "", ":x:"}, {"x", 0, "x", "", "", "x::"}, {"x", 2, "", "", "x", "::x"},
        {"h:DATA", 2, "h", "DATA", "", "h:DATA:"}, {"h:DATA:CO2", 0, "h", "DATA", "CO2", "h:DATA:CO2"},
        {"a:b:c:d", 1, "a", "b", "c:d", "a:b:c:d"},
    };
    for (const auto& row : rows) {
        VariableString v(row.text, row.default_field);
        EXPECT_EQ(std::make_tuple(v.host, v.record, v.variable, v.str()),
                  std::make_tuple(row.host, row.record, row.variable, row.joined)) << row.text;
    }
}

TEST(Stream, CheckSums)
{
    const std::pair<std::string, bool> rows[] = {
        {"DATA\t1\t2\t3\t212\n", true}, {"DATA\t1\t2\t3\t212", true}, {"DATA\t1\t2\t3\t213\n", false},
        {"DATA\t1\t2\t3\t 212\n", false},  // the blank is summed, so the sum moves
        {with_sum("DATA\t4\t5\t"), true},
        {"D\t" + std::to_string(int('D')) + "\n", true},  // a tab and two digits: the tab is not summed
        {"DA\n", false}, {"\n", false}, {"", false},
    };
    for (const auto& [line, good] : rows)
        EXPECT_EQ(Connector::VerifyCheckSum(line), good) << line;
}

/// A Tolvan connector named after the test, with a log file of its own.
class StreamTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        connector = Connector::Factory(nullptr, name, "tolvan");
        connector->SetLogFileName(path);
    }
    void TearDown() override { Connector::LookupAndUnRegisterListener(&listener); }
    std::string logged() const
    {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    QTemporaryDir dir;
    const std::string path = dir.filePath("log.txt").toStdString();
    std::string name, log;
    std::shared_ptr<Connector> connector;
    RecordingListener listener{"L", log};
    const std::string data1 = with_sum("DATA\t1\t2\t3\t"), data2 = with_sum("DATA\t4\t5\t6\t"),
                      stat = with_sum("DATASTAT\t7\t8\t9\t");
};

TEST_F(StreamTest, RecordKinds)
{
    const std::pair<const char*, RecordKind> rows[] = {
        {"DATA", RecData},      {"DATASTAT", RecStat},    {"DATACLOCK", RecClock}, {"DATATEST", RecTest},
        {"DATAH", RecHeader},   {"DATAR", RecWaveform},  {"DATAEVENT", RecEvent}, {"DATAU", RecUnit},
        {"DATAFLRAW", RecRaw},  {"DAT", RecUnknown},     {"XDATA", RecUnknown},   {"DATAFOO", RecData},
        {"DATABARH", RecHeader}, {"DATABAR", RecData},
        {"DATASH", RecHeader},  {"DATAS", RecData},  // a new header turns a waveform into data
    };
    for (const auto& [record, kind] : rows)
        EXPECT_EQ(connector->RecordType(record), kind) << record;
}

// Every listener sees the data before any sees the post-update.
TEST_F(StreamTest, ValuesFollowTheHeader)
{
    RecordingListener second("M", log);
    connector->RegisterListener("DATA", &listener);
    connector->RegisterListener("DATA", &second);
    connector->HandleData(with_sum("DATA\t1\t2\t3\t"));  // before its header: stored nowhere
    EXPECT_EQ(log, "");
    connector->HandleData("DATAH\tCO2\tSECONDS\tNANOSECONDS\tCHK\n");
    connector->HandleData(with_sum("DATA\t+1.5e2\t100\t500000000\t"));
    EXPECT_EQ(log, "L:Data:DATA M:Data:DATA L:Post:DATA M:Post:DATA ");
    Connector::LookupAndUnRegisterListener(&second);
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:CO2"), 150);
    EXPECT_EQ(connector->VarStrings("DATA")[0], "+1.5e2");
    EXPECT_DOUBLE_EQ(connector->Time(), 100.5);
    EXPECT_EQ(Connector::LookupVarNumeric(name + ":DATA:SECONDS"), std::make_pair(100.5, 100.0));
    EXPECT_EQ(Connector::LookupVarNumeric("nobody:DATA:CO2"), std::make_pair(0.0, 0.0));
    EXPECT_EQ(Connector::LookupVarNumeric(name + ":DATA:NOSUCH"), std::make_pair(100.5, 0.0));

    // A short line keeps what it does not reach (its sum lands in the next cell).
    connector->HandleData(with_sum("DATA\tnan\t"));
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:NANOSECONDS"), 500000000);
    EXPECT_EQ(connector->VarStrings("DATA")[0], "nan");
    log.clear();
    connector->HandleData("DATA\t1\t2\t3\t999\n");  // bad sum: dropped in silence
    EXPECT_EQ(connector->VarStrings("DATA")[0], "nan");
    connector->HandleData("DATAH\tA\tB\n");  // two fields: stored, never told
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

TEST_F(StreamTest, EventsClocksAndUnits)
{
    for (const char* record : {"DATAEVENT", "DATACLOCK", "DATAU"})
        connector->RegisterListener(record, &listener);
    for (const char* line : {"DATAEVENT\tPOWER\ton at last\n", "DATAEVENT\n", "DATACLOCK\t2016-03-09T10:00:00\tignored\n",
                             "DATAU\tppm\tC\n", "\n", "XDATA\t1\n"})
        connector->HandleData(line);
    EXPECT_EQ(log, "L:Event:DATAEVENT:POWER:on at last L:Event:DATAEVENT:: L:Time:DATACLOCK:2016-03-09T10:00:00 "
                   "L:Unit:DATAU ");
    EXPECT_EQ(connector->LookupEvent("POWER"), "DATAEVENT\tPOWER\ton at last\n");
    EXPECT_EQ(connector->Unit("DATAU"), (std::vector<std::string>{"ppm", "C"}));
}

// Continuous logging writes the stream's own lines, events and headers first; a restart empties the file.
TEST_F(StreamTest, ContinuousLoggingWritesTheStreamAsItComes)
{
    for (const char* line : {"DATAEVENT\tPOWER\ton\n", "DATAH\tA\tB\tC\n", "DATAU\tppm\n"})
        connector->HandleData(line);
    connector->StartLoggingToFile();
    EXPECT_TRUE(connector->IsLogging());
    for (const std::string& line : {data1, std::string("DATA\t1\t2\t3\t000\n"), std::string("DATASTATH\tX\tY\tZ\n"), stat,
                                    std::string("DATACLOCK\t12:00\n"), std::string("DATAFLRAW\txyz\n"),
                                    std::string("DATAU\tppm\n")})
        connector->HandleData(line);
    connector->HandleXML("<arvex><tolvan><name>n</name></tolvan></arvex>\n");
    connector->StopLoggingToFile();
    EXPECT_EQ(logged(), "DATAEVENT\tPOWER\ton\nDATAH\tA\tB\tC\n" + data1 + "DATASTATH\tX\tY\tZ\n" + stat +
                            "DATACLOCK\t12:00\n");
    connector->StartLoggingToFile();
    connector->StopLoggingToFile();
    EXPECT_EQ(logged(), "DATAEVENT\tPOWER\ton\nDATAH\tA\tB\tC\nDATASTATH\tX\tY\tZ\n");
}

// On the button the latest records are written per press, after the headers known when the file opened.
TEST_F(StreamTest, OnButtonLoggingWritesTheLatestRecordsPerPress)
{
    connector->SetLogContinuous(false);
    for (const std::string& line : {std::string("DATAH\tA\tB\tC\n"), data1, data2, stat})
        connector->HandleData(line);
    connector->LogDataNow();  // no file yet: nothing
    connector->StartLoggingToFile();
    connector->LogDataNow();
    connector->HandleData("DATASTATH\tX\tY\tZ\n");
    connector->LogDataNow();
    connector->StopLoggingToFile();
    EXPECT_EQ(logged(), "DATAH\tA\tB\tC\n" + data2 + stat + data2 + stat);
}

TEST_F(StreamTest, LogDialogButtonFollowsTheFourStates)
{
    LogDialog dialog(nullptr, "host", connector);
    auto button_text = [&] {
        for (QPushButton* b : dialog.findChildren<QPushButton*>())
            if (b->text() == "Start" || b->text() == "Stop" || b->text() == "Log Now")
                return b->text();
        return QString();
    };
    EXPECT_EQ(button_text(), "Start");
    dialog.OnStartButton();
    EXPECT_EQ(button_text(), "Stop");
    EXPECT_TRUE(connector->IsLogging());
    dialog.OnLogRadio();
    EXPECT_EQ(button_text(), "Log Now");
    dialog.OnStartButton();  // open and on-button: logs now, stays open
    EXPECT_TRUE(connector->IsLogging());
    dialog.OnContinuousRadio();
    dialog.OnStartButton();
    EXPECT_FALSE(connector->IsLogging());
    dialog.OnStartButton();
    EXPECT_TRUE(connector->IsLogging());
    dialog.close();  // closing ends logging
    EXPECT_FALSE(connector->IsLogging());
}

// A name shares one connector; the last release lets a new type replace it, unless it is logging.
TEST_F(StreamTest, RegistrySharesAndReplaces)
{
    auto first = Connector::Factory(nullptr, "reg-host:DATA", "morvik");
    auto second = Connector::Factory(nullptr, "reg-host", "tolvan");
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->Type(), "morvik");
    EXPECT_EQ(first->Host(), "reg-host");
    EXPECT_THROW(first->Doc_Tolvan(), std::bad_cast);
    first->Doc_Morvik().Conf().Name().set("kept");
    Connector* old = first.get();
    first.reset();
    second.reset();
    auto third = Connector::Factory(nullptr, "reg-host", "sarnel");
    EXPECT_NE(third.get(), old);
    EXPECT_EQ(third->Type(), "sarnel");
    EXPECT_EQ(third->Doc_Morvik().Conf().Name().get(), "");
    EXPECT_EQ(Connector::Factory(nullptr, "other", "quux")->Type(), "tolvan");

    connector->StartLoggingToFile();
    old = connector.get();
    connector.reset();
    connector = Connector::Factory(nullptr, name, "tolvan");
    EXPECT_EQ(connector.get(), old);
    connector->StopLoggingToFile();
}

// --- the per-model types: their words, record times and the messages that select records ---

TEST(ConnectorTypes, WordsAndDocuments)
{
    const struct {
        const char *word, *name, *model_tag;
        bool selects_records;
    } rows[] = {
        {"tolvan", "tolvan", "tolvan", true},  {"morvik", "morvik", "morvik", false},
        {"sarnel", "sarnel", "morvik", false}, {"halden", "dravik", "halden", true},
        {"dravik", "dravik", "dravik", true},  {"quenta", "dravik", "quenta", true},
        {"bremmel", "bremmel", "bremmel", true}, {"ostrel", "ostrel", "ost", true},
        {"Tolvan", "tolvan", "tolvan", true},  {"", "tolvan", "tolvan", true},
    };
    for (const auto& row : rows) {
        auto type = ConnectorType::Make(row.word);
        EXPECT_EQ(type->TypeName(), row.name) << row.word;
        auto* composite = dynamic_cast<ConfigurableComposite*>(&type->Doc());
        ASSERT_NE(composite, nullptr);
        EXPECT_EQ(composite->name() + "/" + composite->children().front()->name(), std::string("arvex/") + row.model_tag);
        const std::string selection = type->OutputSelection();
        EXPECT_EQ(!selection.empty(), row.selects_records) << row.word;
        EXPECT_TRUE(selection.empty() || selection.back() == '\n') << row.word;
        EXPECT_EQ(type->ClockSyncSelection(true).empty(), std::string(row.name) != "tolvan") << row.word;
    }
}

TEST(ConnectorTypes, RecordTimes)
{
    double a = 5, b = 7, c = 250000000, d = 500000000;
    const ConnectorType::Cells cells{&a, &b, &c, &d};
    const struct {
        const char *word, *record;
        double time, test_time;
    } rows[] = {
        {"tolvan", "DATA", 7.25, 1}, {"morvik", "DATASTAT", 7.25, 1},
        {"halden", "DATA", 5, 5},    {"quenta", "DATASTAT", 5, 5},  {"ostrel", "DATA", 5, 5},
        {"bremmel", "DATA", 250000000.5, 1}, {"bremmel", "DATAGPS", 5.000000007, 1},
    };
    for (const auto& row : rows) {
        auto type = ConnectorType::Make(row.word);
        EXPECT_DOUBLE_EQ(type->RecordTime(row.record, cells), row.time) << row.word << " " << row.record;
        EXPECT_DOUBLE_EQ(type->TestRecordTime("DATATEST", cells), row.test_time) << row.word;
    }
    auto counting = ConnectorType::Make("tolvan");
    counting->TestRecordTime("DATATEST", {});
    EXPECT_EQ(counting->TestRecordTime("DATATEST", {}), 2);

    // The Dravik stamps every other record with the time of the last DATA.
    auto dravik = ConnectorType::Make("dravik");
    EXPECT_EQ(dravik->RecordTime("DATASTAT", cells), 0);
    EXPECT_EQ(dravik->RecordTime("DATA", cells), 5);
    a = 9;
    EXPECT_EQ(dravik->RecordTime("DATASTAT", cells), 5);
    EXPECT_EQ(dravik->TestRecordTime("DATATEST", cells), 9);
}

}  // namespace
