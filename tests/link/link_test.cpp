// The record language: framing buffer, names, sums, classification, values, notification and logging;
// the link over a real socket; and the per-model types.

#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>
#include <iterator>
#include <tuple>

#include "link/connectortype.h"
#include "link/logdialog.h"
#include "link/redialer.h"
#include "link_test_util.h"
#include "tests/service/wire.h"

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

// A stream that makes up names without end is cut off at the bounds; what it knew goes on working.
TEST_F(StreamTest, MadeUpNamesStopAtTheBounds)
{
    connector->RegisterListener("DATA", &listener);
    connector->RegisterListener("DATAEVENT", &listener);
    connector->StartLoggingToFile();
    connector->HandleData("DATAH\tA\tB\tC\n");
    connector->HandleData("DATANEWH\tX\tY\tZ\n");  // learns two names
    for (size_t i = 0; i < Connector::MAX_LEARNED_RECORDS; ++i)
        connector->HandleData(with_sum("DATAX" + std::to_string(i) + "\t1\t2\t3\t"));
    for (size_t i = 0; i < Connector::MAX_EVENT_WORDS + 10; ++i)
        connector->HandleData("DATAEVENT\tEV" + std::to_string(i) + "\tsaid\n");
    EXPECT_EQ(connector->RecordType("DATAX1021"), RecData);
    for (const char* late : {"DATAX1022", "DATAYH", "DATAX5H"})
        EXPECT_EQ(connector->RecordType(late), RecUnknown) << late;
    EXPECT_EQ(connector->LookupEvent("EV255"), "DATAEVENT\tEV255\tsaid\n");
    EXPECT_EQ(connector->LookupEvent("EV256"), "");
    connector->HandleData("DATAEVENT\tEV3\tagain\n");  // a stored word keeps its latest line
    EXPECT_EQ(connector->LookupEvent("EV3"), "DATAEVENT\tEV3\tagain\n");
    EXPECT_NE(log.find("L:Event:DATAEVENT:EV265:said "), std::string::npos);

    log.clear();
    connector->HandleData(data1);
    connector->HandleData(with_sum("DATANEW\t4\t5\t6\t"));
    EXPECT_EQ(log, "L:Data:DATA L:Post:DATA ");
    EXPECT_EQ(connector->VarNumeric(name + ":DATA:A"), 1);
    EXPECT_EQ(connector->VarNumeric(name + ":DATANEW:X"), 4);
    connector->StopLoggingToFile();
    const std::string file = logged();
    EXPECT_NE(file.find("DATAEVENT\tEV265\tsaid\nDATAEVENT\tEV3\tagain\n" + data1), std::string::npos);
    EXPECT_EQ(file.find("DATAX1022"), std::string::npos);
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

// Continuous logging writes the stream's own lines, events and headers first; a restart empties the file.
TEST_F(StreamTest, ContinuousLoggingWritesTheStreamAsItComes)
{
    for (const char* line : {"DATAEVENT\tPOWER\ton\n", "DATAH\tA\tB\tC\n", "DATAU\tppm\n"})
        connector->HandleData(line);
    connector->StartLoggingToFile();
    EXPECT_TRUE(connector->IsLogging());
    const std::string bad_sum = "DATA\t1\t2\t3\t000\n", header = "DATASTATH\tX\tY\tZ\n";
    for (const std::string& line : {data1, bad_sum, header, stat, std::string("DATACLOCK\t12:00\n"),
                                    std::string("DATAFLRAW\txyz\n"), std::string("DATAU\tppm\n")})
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
    first.reset();
    second.reset();
    auto third = Connector::Factory(nullptr, "reg-host", "sarnel");
    EXPECT_EQ(third->Type(), "sarnel");
    EXPECT_EQ(third->Doc_Morvik().Conf().Name().get(), "");
    EXPECT_EQ(Connector::Factory(nullptr, "other", "quux")->Type(), "tolvan");

    connector->StartLoggingToFile();
    Connector* old = connector.get();
    connector.reset();
    connector = Connector::Factory(nullptr, name, "tolvan");
    EXPECT_EQ(connector.get(), old);
    connector->StopLoggingToFile();
}

// --- over a real socket: a QTcpServer on 127.0.0.1 stands in for the instrument ---

// The shared instrument stand-in, collecting the lines the connector sends.
struct Instrument : FakeInstrument {
    int port() const { return server.serverPort(); }
    /// Waits until `count` lines have come in.
    bool WaitForLines(size_t count)
    {
        return QTest::qWaitFor([&] {
            while (socket && socket->canReadLine())
                lines.push_back(socket->readLine().toStdString());
            return lines.size() >= count;
        }, WIRE_TIMEOUT_MS);
    }
    void Send(const std::string& text) { socket->write(text.data(), qint64(text.size())), socket->flush(); }

    std::vector<std::string> lines;
};

// A Tolvan gets the three queries and its record selection. Records and XML lines split over reads
// are taken whole; changes go out at once, and within the period they are coalesced.
TEST(Socket, OpeningFramingAndChanges)
{
    Instrument instrument;
    auto connector = Connector::Factory(nullptr, "socket-tolvan", "tolvan");
    QSignalSpy connected(connector.get(), &Connector::Connected);
    connector->Connect("127.0.0.1", 0, instrument.port());
    ASSERT_TRUE(instrument.Accept());
    EXPECT_TRUE(connected.count() > 0 || connected.wait(WIRE_TIMEOUT_MS));
    EXPECT_EQ(connector->ConnectedTo(), "127.0.0.1:" + std::to_string(instrument.port()));
    ASSERT_TRUE(instrument.WaitForLines(4));
    EXPECT_EQ(instrument.lines,
              (std::vector<std::string>{"<arvex>&query_doctype;</arvex>\n", "<arvex>&query_changes;</arvex>\n",
                                        "<arvex>&query;</arvex>\n", TypeTolvan().OutputSelection()}));
    std::string log;
    RecordingListener listener("L", log);
    connector->RegisterListener("DATA", &listener);
    const std::string data = with_sum("DATA\t1\t2\t3\t");
    instrument.Send("DATAH\tA\tB\tC\n" + data.substr(0, 5));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !connector->Header("DATAH").empty(); }, WIRE_TIMEOUT_MS));
    EXPECT_EQ(log, "");
    instrument.Send(data.substr(5) + with_sum("DATA\t4\t5\t6\t") + "<arvex><tolvan><name>sp");
    ASSERT_TRUE(QTest::qWaitFor([&] { return log.size() > 40; }, WIRE_TIMEOUT_MS));
    EXPECT_EQ(log, "L:Data:DATA L:Post:DATA L:Data:DATA L:Post:DATA ");
    EXPECT_EQ(connector->VarStrings("DATA")[0], "4");

    // An XML line split over two reads is applied once, whole.
    QSignalSpy received(connector.get(), &Connector::GotXMLChanges);
    instrument.Send("lit</name></tolvan></arvex>\n");
    ASSERT_TRUE(received.wait(WIRE_TIMEOUT_MS));
    EXPECT_EQ(connector->Doc_Tolvan().Conf().Name().get(), "split");
    instrument.Send("<arvex><tolvan><name>split</name></tolvan></arvex>\n" + with_sum("DATA\t7\t8\t9\t"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return connector->VarStrings("DATA")[0] == "7"; }, WIRE_TIMEOUT_MS));
    EXPECT_EQ(received.count(), 1);  // the same value again changes nothing
    Connector::LookupAndUnRegisterListener(&listener);

    DocTolvan& doc = connector->Doc_Tolvan();
    doc._set_changed(false);
    QSignalSpy changes(connector.get(), &Connector::GotXMLChanges);

    doc.Conf().Name().set("first");
    connector->OnSendXMLChanges();
    ASSERT_TRUE(instrument.WaitForLines(5));
    EXPECT_EQ(instrument.lines[4], "<arvex><tolvan><name>first</name></tolvan></arvex>\n");
    EXPECT_EQ(changes.count(), 1);

    doc.Conf().Name().set("second");
    connector->OnSendXMLChanges();  // within the period: waits for the timer
    doc.Conf().Ipaddress().set("10.0.0.1");
    connector->OnSendXMLChanges();
    EXPECT_EQ(changes.count(), 1);
    ASSERT_TRUE(instrument.WaitForLines(6));
    EXPECT_EQ(instrument.lines[5],
              "<arvex><tolvan><name>second</name><ipaddress>10.0.0.1</ipaddress></tolvan></arvex>\n");
    EXPECT_EQ(changes.count(), 2);
    EXPECT_FALSE(doc.has_changed());

    // Nothing changed: nothing goes out, not even when the timer fires; raw text goes at once.
    connector->OnSendXMLChanges();
    connector->OnSendRawXML("<arvex><tolvan><cmd><poll>true</poll></cmd></tolvan></arvex>\n");
    ASSERT_TRUE(instrument.WaitForLines(7));
    EXPECT_EQ(instrument.lines[6], "<arvex><tolvan><cmd><poll>true</poll></cmd></tolvan></arvex>\n");
    doc.Conf().Name().set("third");
    connector->OnSendXMLChanges();
    ASSERT_TRUE(instrument.WaitForLines(8));
    EXPECT_EQ(instrument.lines[7], "<arvex><tolvan><name>third</name></tolvan></arvex>\n");
    EXPECT_EQ(changes.count(), 3);
}

TEST(Socket, QueueFallsThroughTheLastRefusalIsShownOnceAndDisconnectForgetsIt)
{
    std::vector<QString> boxes;
    Connector::SetMessageBox([&](QWidget*, const QString& title, const QString& text) { boxes.push_back(title + "|" + text); });
    // Ports that refuse: a server that listened once and was closed.
    std::vector<int> closed;
    for (int i = 0; i < 3; ++i) {
        QTcpServer server;
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
        closed.push_back(server.serverPort());
    }
    auto connector = Connector::Factory(nullptr, "queue-host", "tolvan");
    for (int port : closed)
        connector->Connect("127.0.0.1", 0, port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !boxes.empty(); }, WIRE_TIMEOUT_MS));
    ASSERT_EQ(boxes.size(), 1u);  // and it is the last target's: nothing is left to try
    EXPECT_EQ(boxes[0], "Connect To Instrument|The connection was refused by the peer. Make sure the instrument is "
                        "running, and check that the host name and port settings are correct.");
    EXPECT_EQ(connector->ConnectedTo(), "127.0.0.1:" + std::to_string(closed[2]));

    // A good target after two bad ones is reached without a box. Connecting then only queues, and
    // disconnecting forgets the queue.
    boxes.clear();
    Instrument instrument;
    QSignalSpy connected(connector.get(), &Connector::Connected);
    connector->Connect("127.0.0.1", 0, closed[0]);
    connector->Connect("127.0.0.1", 0, instrument.port());
    EXPECT_TRUE(instrument.Accept());
    EXPECT_TRUE(connected.count() > 0 || connected.wait(WIRE_TIMEOUT_MS));
    EXPECT_TRUE(boxes.empty());
    Connector::SetMessageBox([](QWidget*, const QString&, const QString&) {});
    connector->Connect("fe80::1", 4, 4410);
    EXPECT_EQ(connector->ConnectedTo(), "127.0.0.1:" + std::to_string(instrument.port()));
    connector->Disconnect();
    EXPECT_EQ(connector->ConnectedTo(), "");
    QSignalSpy disconnected(connector.get(), &Connector::Disconnected);
    EXPECT_TRUE(disconnected.count() > 0 || disconnected.wait(WIRE_TIMEOUT_MS));
    EXPECT_EQ(connector->ConnectedTo(), "");  // a queued target would be dialled on this signal
}

// A redialer keeps trying, silently, while the instrument is away, and is back as soon as it
// listens again on the same port; the waits between tries follow the back-off.
TEST(Socket, RedialerBringsALostLinkBack)
{
    std::vector<double> waits;
    Backoff backoff;
    for (int i = 0; i < 7; ++i)
        waits.push_back(backoff.Next());
    EXPECT_EQ(waits, (std::vector<double>{1, 2, 4, 8, 16, 30, 30}));
    backoff.Reset();
    EXPECT_EQ(backoff.Next(), 1);

    int boxes = 0;
    Connector::SetMessageBox([&](QWidget*, const QString&, const QString&) { ++boxes; });
    auto connector = Connector::Factory(nullptr, "redial-host", "tolvan");
    QSignalSpy connected(connector.get(), &Connector::Connected);
    QSignalSpy disconnected(connector.get(), &Connector::Disconnected);
    Redialer redialer(*connector);
    auto instrument = std::make_unique<Instrument>();
    const quint16 port = instrument->server.serverPort();
    instrument->server.close();  // away at the start: the first dial is refused
    redialer.Dial("127.0.0.1", 0, port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return redialer.NextAttemptIn() >= 0 && connector->IsIdle(); }, WIRE_TIMEOUT_MS));
    ASSERT_TRUE(instrument->server.listen(QHostAddress::LocalHost, port));
    ASSERT_TRUE(instrument->Accept());
    ASSERT_TRUE(connected.count() > 0 || connected.wait(WIRE_TIMEOUT_MS));
    EXPECT_LT(redialer.NextAttemptIn(), 0);

    instrument = std::make_unique<Instrument>();  // the old one's socket closes: the link is lost
    ASSERT_TRUE(disconnected.count() > 0 || disconnected.wait(WIRE_TIMEOUT_MS));
    EXPECT_FALSE(connector->IsConnected());
    EXPECT_GT(redialer.NextAttemptIn(), 0);
    instrument->server.close();
    ASSERT_TRUE(instrument->server.listen(QHostAddress::LocalHost, port));
    ASSERT_TRUE(instrument->Accept());
    ASSERT_TRUE(QTest::qWaitFor([&] { return connected.count() == 2; }, WIRE_TIMEOUT_MS));
    EXPECT_EQ(boxes, 0);
    Connector::SetMessageBox(nullptr);
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
        EXPECT_EQ(composite->name() + "/" + composite->children().front()->name(),
                  std::string("arvex/") + row.model_tag);
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
        {"tolvan", "DATA", 7.25, 1}, {"morvik", "DATASTAT", 7.25, 1}, {"halden", "DATA", 5, 5},
        {"quenta", "DATASTAT", 5, 5}, {"ostrel", "DATA", 5, 5}, {"bremmel", "DATA", 250000000.5, 1},
        {"bremmel", "DATAGPS", 5.000000007, 1},
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
