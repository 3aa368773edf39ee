// The real sondar-sim: on 127.0.0.1, with the real Connector and bare sockets as clients, faults
// between them, and every model end to end; over standard input.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>

#include <cmath>
#include <csignal>
#include <fstream>
#include <set>

#include "sim_process.h"

namespace {

class SimNetwork : public ::testing::Test {
protected:
    void SetUp() override
    {
        Connector::SetMessageBox([this](QWidget*, const QString& title, const QString& text) {
            boxes.push_back(title + ": " + text);
        });
    }
    void TearDown() override { Connector::SetMessageBox([](QWidget*, const QString&, const QString&) {}); }

    /// A link to the simulated Tolvan, listened to by `heard`, with its opening sequence done:
    /// the replica is filled once the Tolvan's selection is back.
    std::shared_ptr<Connector> Link(const std::string& name, int port, Heard& heard)
    {
        auto link = std::make_shared<Connector>(nullptr, name, "tolvan");
        for (const char* record : {"DATA", "DATAEVENT"})
            link->RegisterListener(record, &heard);
        link->Connect("127.0.0.1", 0, port);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return compact_query(link->Doc()).find("<waveforms>true</waveforms><status>true</status><dataclock>true") !=
                   std::string::npos;
        }, TIMEOUT_MS)) << name;
        return link;
    }

    /// Signals the simulator, which ends cleanly however many clients it has.
    static void ExpectCleanEnd(SimProcess& sim, int signal)
    {
        ::kill(pid_t(sim.process.processId()), signal);
        ASSERT_TRUE(QTest::qWaitFor([&] { return sim.process.state() == QProcess::NotRunning; }, TIMEOUT_MS));
        EXPECT_EQ(sim.process.exitStatus(), QProcess::NormalExit) << signal;
        EXPECT_EQ(sim.process.exitCode(), 0) << signal << sim.Log().toStdString();
    }

    std::vector<QString> boxes;
};

// One simulated Tolvan for a link that mirrors it, a second that shares it, and clients that
// misbehave: one that sends garbage, or does not read, or never ends its line, costs the links nothing.
TEST_F(SimNetwork, OneInstrumentServesItsLinksWhateverOtherClientsDo)
{
    SimProcess sim({"--model", "tolvan", "--name", "shared", "--rate", "10"});
    ASSERT_TRUE(sim.WaitListening());
    Heard heard, heard_b;
    auto a = Link("shared-a", sim.port, heard);
    const std::string truth = query_truth(sim.port);
    EXPECT_NE(truth.find("<name>shared</name>"), std::string::npos);
    EXPECT_EQ(without_clock_time(compact_query(a->Doc())), without_clock_time(truth));
    EXPECT_FALSE(a->Header("DATAH").empty());

    // The records are stamped 0.1 s apart, and arrive no faster: more than a second apart
    // cannot be a burst, however the machine stalls.
    ASSERT_TRUE(heard.WaitForData(20));
    for (size_t i = 1; i < heard.times.size(); ++i)
        EXPECT_NEAR(heard.times[i] - heard.times[i - 1], 0.1, 1e-6) << i;
    EXPECT_GE(heard.arrivals.back() - heard.arrivals.front(), 800);

    // A change from one replica reaches the other.
    auto b = Link("shared-b", sim.port, heard_b);
    a->Doc_Tolvan().Conf().Cfg().Linelock().Lasercooler().Temp().set(31.5f);
    a->Doc_Tolvan().Conf().Cfg().Heater().Top().Heaterpower().set(55);
    a->OnSendXMLChanges();
    DocTolvan& other = b->Doc_Tolvan();
    ASSERT_TRUE(QTest::qWaitFor([&] { return other.Conf().Cfg().Heater().Top().Heaterpower().get() == 55; },
                                TIMEOUT_MS));
    EXPECT_EQ(other.Conf().Cfg().Linelock().Lasercooler().Temp().get(), 31.5f);

    std::string nested, queries;
    for (int i = 0; i < 20000; ++i)
        nested += "<a>";
    const std::string inputs[] = {
        std::string("\0\xff\xfe\x01 binary\n", 10),
        "<arvex><tolvan><name>\n",
        "<arvex>" + nested + "\n",
        "<arvex>" + std::string(200000, '<') + "\n",
        "<arvex><tolvan><cfg><clock><time>99-99</time></clock></cfg></tolvan></arvex>\n",
        "DATA\t1\t2\t3\t212\n",
        "\r\n\r\n\n",
    };
    RawClient vandal;
    ASSERT_TRUE(vandal.Connect(sim.port));
    for (const std::string& input : inputs) {
        vandal.Send(input);
        EXPECT_TRUE(heard.WaitForData(3)) << input.substr(0, 40);
    }
    vandal.Send("<arvex><tolvan><name>&query_item;</name></tolvan></arvex>\n");
    EXPECT_EQ(vandal.WaitFor([](const std::string& line) { return line.rfind("shared", 0) == 0; }), "shared\n");

    RawClient sluggard;
    sluggard.socket.setReadBufferSize(4096);
    ASSERT_TRUE(sluggard.Connect(sim.port));
    for (int i = 0; i < 5000; ++i)
        queries += "<arvex>&query;</arvex>\n";
    sluggard.Send(queries);
    vandal.Send(std::string(3 << 20, 'x'));
    for (const char* drop : {"dropped: it does not read", "dropped: it sends a line without end"})
        ASSERT_TRUE(QTest::qWaitFor([&] { return sim.Log().contains(drop); }, TIMEOUT_MS)) << sim.Log().toStdString();
    EXPECT_TRUE(heard.WaitForData(3));
    EXPECT_EQ(sim.process.state(), QProcess::Running);
    EXPECT_TRUE(boxes.empty());
    ExpectCleanEnd(sim, SIGINT);
}

TEST_F(SimNetwork, ARebootClosesEveryClientAndComesBack)
{
    SimProcess sim({"--model", "tolvan", "--name", "phoenix"});
    ASSERT_TRUE(sim.WaitListening());
    Heard heard;
    auto link = Link("phoenix", sim.port, heard);
    QSignalSpy disconnected(link.get(), &Connector::Disconnected);
    link->OnSendRawXML("<arvex><tolvan><cmd><reboot>true</reboot></cmd></tolvan></arvex>\n");
    ASSERT_TRUE(disconnected.wait(TIMEOUT_MS));
    ASSERT_FALSE(heard.events.empty());
    EXPECT_EQ(heard.events.back(), "REBOOT");

    // While it reboots it refuses; whoever it does let in gets the headers.
    const auto headers = [](RawClient& client) {
        return client.WaitFor([](const std::string& line) { return line.rfind("DATAH\t", 0) == 0; }).substr(0, 10);
    };
    RawClient early;
    early.socket.connectToHost(QHostAddress::LocalHost, quint16(sim.port));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return early.socket.state() == QAbstractSocket::UnconnectedState ||
               early.socket.state() == QAbstractSocket::ConnectedState;
    }, TIMEOUT_MS));
    if (early.socket.state() == QAbstractSocket::ConnectedState)
        EXPECT_EQ(headers(early), "DATAH\tMSEC");
    else
        EXPECT_EQ(early.socket.error(), QAbstractSocket::ConnectionRefusedError);

    ASSERT_TRUE(QTest::qWaitFor([&] { return sim.Log().contains("up again"); }, TIMEOUT_MS)) << sim.Log().toStdString();
    RawClient next;
    ASSERT_TRUE(next.Connect(sim.port));
    EXPECT_EQ(headers(next), "DATAH\tMSEC");
}

// Runs sondar-sim to its end; its exit code, or -1 if it crashed or hung.
int run_to_end(const QStringList& arguments)
{
    QProcess process;
    process.start(SONDAR_SIM, arguments);
    if (!process.waitForFinished(TIMEOUT_MS) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    return process.exitCode();
}

TEST(SimCommandLine, BadArgumentsAreRefused)
{
    const QStringList refused[] = {
        {},
        {"--model", "tolvan"},
        {"--name", "x"},
        {"--model", "quux", "--name", "x"},
        {"--model", "tolvan", "--name", "x", "--rate", "3"},
        {"--model", "morvik", "--name", "x", "--rate", "-1"},
        {"--model", "tolvan", "--name", "x", "--port", "0"},
        {"--model", "tolvan", "--name", "x", "--port", "65536"},
        {"--model", "tolvan", "--name", "x", "--listen", "nowhere"},
        {"--model", "tolvan", "--name", "x", "--speed", "0"},
        {"--model", "tolvan", "--name", "x", "--speed", "fast"},
        {"--model", "tolvan", "--name", "x", "--name", "y"},
        {"--model", "tolvan", "--name", "x", "--stdio"},
        {"--model", "tolvan", "--name"},
    };
    for (const QStringList& arguments : refused)
        EXPECT_EQ(run_to_end(arguments), 2) << arguments.join(" ").toStdString();
    // What cannot be done ends with 1.
    EXPECT_EQ(run_to_end({"--dump-spectrum", "/nonexistent-directory/spectrum.txt"}), 1);
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost, 0));
    EXPECT_EQ(run_to_end({"--model", "tolvan", "--name", "x", "--port", QString::number(taken.serverPort())}), 1);
}

TEST_F(SimNetwork, AKilledInstrumentLosesNoLoggedLine)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("log.txt").toStdString();
    SimProcess sim({"--model", "morvik", "--name", "mortal", "--rate", "20"});
    ASSERT_TRUE(sim.WaitListening());
    Heard data;
    auto link = std::make_shared<Connector>(nullptr, "mortal", "morvik");
    link->RegisterListener("DATA", &data);
    link->Connect("127.0.0.1", 0, sim.port);
    ASSERT_TRUE(data.WaitForData(2));
    // The opening sequence mirrors the document.
    const std::string truth = without_clock_time(query_truth(sim.port));
    EXPECT_TRUE(QTest::qWaitFor([&] { return without_clock_time(compact_query(link->Doc())) == truth; }, TIMEOUT_MS));
    link->SetLogFileName(path);
    link->StartLoggingToFile();
    data.times.clear();
    ASSERT_TRUE(data.WaitForData(20));
    const std::string replica = compact_query(link->Doc());
    QSignalSpy disconnected(link.get(), &Connector::Disconnected);
    sim.process.kill();
    ASSERT_TRUE(disconnected.count() > 0 || disconnected.wait(TIMEOUT_MS));
    EXPECT_EQ(compact_query(link->Doc()), replica);
    EXPECT_NE(replica.find("<name>mortal</name>"), std::string::npos);

    // The program goes on: the same link reaches the instrument when it is back, into the same file.
    SimProcess again({"--model", "morvik", "--name", "mortal", "--rate", "20"});
    ASSERT_TRUE(again.WaitListening());
    link->Connect("127.0.0.1", 0, again.port);
    ASSERT_TRUE(data.WaitForData(5));
    link->StopLoggingToFile();
    EXPECT_FALSE(link->IsLogging());
    ExpectCleanEnd(again, SIGTERM);

    // Every record taken is in the file, in order, and every line of the file is whole.
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    ASSERT_FALSE(text.str().empty());
    EXPECT_EQ(text.str().back(), '\n');
    const std::vector<std::string> header = fields(records(text.str(), "DATAH").at(0));
    const auto column = [&](const char* name) { return size_t(std::find(header.begin(), header.end(), name) - header.begin()); };
    const size_t seconds = column("SECONDS"), nanoseconds = column("NANOSECONDS");
    std::vector<double> logged;
    for (const std::string& line : records(text.str(), "DATA")) {
        EXPECT_TRUE(Connector::VerifyCheckSum(line)) << line;
        const std::vector<std::string> cells = fields(line);
        ASSERT_GT(cells.size(), nanoseconds) << line;
        logged.push_back(std::stod(cells[seconds]) + std::stod(cells[nanoseconds]) / 1e9);
    }
    EXPECT_EQ(logged, data.times);
}

// Between the link and the simulator: hands every byte on in a segment of its own, and towards the
// link waits until the link has read it, so that every line is cut at every position.
TEST_F(SimNetwork, LinesCutIntoOneByteSegmentsArriveWhole)
{
    SimProcess sim({"--model", "morvik", "--name", "slowpoke"});
    ASSERT_TRUE(sim.WaitListening());
    QTcpServer relay;
    ASSERT_TRUE(relay.listen(QHostAddress::LocalHost, 0));
    Heard data;
    auto link = std::make_shared<Connector>(nullptr, "slowpoke", "morvik");
    link->RegisterListener("DATA", &data);
    link->Connect("127.0.0.1", 0, relay.serverPort());
    ASSERT_TRUE(relay.waitForNewConnection(TIMEOUT_MS));
    QTcpSocket* to_link = relay.nextPendingConnection();
    to_link->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    QTcpSocket to_sim;
    to_sim.connectToHost(QHostAddress::LocalHost, quint16(sim.port));
    ASSERT_TRUE(to_sim.waitForConnected(TIMEOUT_MS));
    to_sim.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    QObject::connect(to_link, &QTcpSocket::readyRead, [&] {
        for (char byte : to_link->readAll()) {
            to_sim.write(&byte, 1);
            to_sim.flush();
        }
    });

    QTcpSocket* link_socket = link->findChild<QTcpSocket*>();
    ASSERT_NE(link_socket, nullptr);
    QSignalSpy reads(link_socket, &QTcpSocket::readyRead);
    std::string pending, handed;
    while (records(handed, "DATA").size() < 3 || handed.back() != '\n') {
        ASSERT_TRUE(QTest::qWaitFor([&] {
            pending += to_sim.readAll().toStdString();
            return !pending.empty();
        }, TIMEOUT_MS));
        const int before = reads.count();
        to_link->write(pending.data(), 1);
        to_link->flush();
        handed += pending[0];
        pending.erase(0, 1);
        ASSERT_TRUE(reads.count() > before || reads.wait(TIMEOUT_MS)) << handed.size();
    }

    EXPECT_NE(compact_query(link->Doc()).find("<name>slowpoke</name>"), std::string::npos);
    const std::vector<std::string> lines = records(handed, "DATA");
    ASSERT_EQ(data.times.size(), lines.size());
    const std::vector<std::string> last = fields(lines.back());
    EXPECT_EQ(link->VarStrings("DATA"), std::vector<std::string>(last.begin() + 1, last.end()));
}

// `sondar-sim --stdio` answers one line per line in. The line end that ends a choice error stays on
// the line as \\n; nothing clears the flags, so a fresh document answers &query_changes; whole.
TEST(SimStdio, OneLineOutPerLineIn)
{
    const std::string name = "<arvex><tolvan><name>&query_item;</name></tolvan></arvex>\n";
    const std::string morvik = "<arvex><morvik><factory><serialnumber>&query_item;</serialnumber></factory></morvik>"
                               "</arvex>\n<arvex><sarnel><name>&query_item;</name></sarnel></arvex>\n"
                               "<arvex>&query_changes;</arvex>\n";
    const std::string query = "<arvex>&query;</arvex>\n";
    const struct {
        const char* model;
        std::string input;
        std::vector<std::string> output;
    } cases[] = {
        {"tolvan", query + name + "<arvex><tolvan><name>lab bench</name></tolvan></arvex>\n" + name +
                       "<arvex><tolvan><output><rate>fast</rate></output></tolvan></arvex>\n",
         {compact_query(DocTolvan()), "", "", "lab bench", "<Error Param=\"rate\">invalid option: fast\\n</Error>"}},
        {"morvik", morvik, {"ch4-base-XXXX", "", compact_query(DocMorvik())}},
        {"sarnel", morvik, {"ch4-base-XXXX", "", compact_query(DocMorvik())}},
        {"dravik", query, {compact_query(DocDravik())}},
        {"quenta", query, {compact_query(DocQuenta())}},
        {"halden", query, {compact_query(DocHalden())}},
        {"bremmel", query, {compact_query(DocBremmel())}},
        {"ostrel", query, {compact_query(DocOstrel())}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.model);
        QProcess sim;
        sim.start(SONDAR_SIM, {"--stdio", "--model", c.model});
        ASSERT_TRUE(sim.waitForStarted(TIMEOUT_MS));
        sim.write(c.input.data(), qint64(c.input.size()));
        sim.closeWriteChannel();
        ASSERT_TRUE(sim.waitForFinished(TIMEOUT_MS));
        EXPECT_EQ(sim.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(sim.exitCode(), 0);
        std::vector<std::string> lines = split_lines(sim.readAllStandardOutput().toStdString()), expected = c.output;
        for (std::vector<std::string>* each : {&lines, &expected})
            for (std::string& line : *each)
                line = without_clock_time(line);
        EXPECT_EQ(lines, expected);
    }
}

// Each model end to end against the real Connector.
class SimModelLink : public SimNetwork {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(boxes.empty()) << boxes.front().toStdString();
        // The registry keeps the link after the test: the listener leaves before it is gone.
        if (link)
            link->UnRegisterListener(&heard);
        SimNetwork::TearDown();
    }

    /// Starts the model's simulator and links to it as the program does, listening to `records`;
    /// a bare client checks the sums of a line of each of `sums`.
    void Start(const std::string& model, const std::string& name, const std::vector<std::string>& records,
               const std::vector<std::string>& sums)
    {
        sim = std::make_unique<SimProcess>(QStringList{"--model", QString::fromStdString(model), "--name",
                                                        QString::fromStdString(name)});
        ASSERT_TRUE(sim->WaitListening()) << model;
        link = Connector::Factory(nullptr, name, model);
        for (const std::string& record : records)
            link->RegisterListener(record, &heard);
        link->RegisterListener("DATAEVENT", &heard);
        link->Connect("127.0.0.1", 0, sim->port);
        for (const std::string& record : records)
            ASSERT_TRUE(heard.WaitFor(record)) << model << " " << record;
        ExpectMirrored(model == "ostrel" ? "" : name);
        ExpectGoodSums(sums);
    }

    /// Waits until the replica equals the simulator's document, clock fields aside.
    void ExpectMirrored(const std::string& name)
    {
        const std::string truth = without_clock_time(query_truth(sim->port));
        if (!name.empty()) {
            EXPECT_NE(truth.find("<name>" + name + "</name>"), std::string::npos) << truth;
        }
        (void)QTest::qWaitFor([&] { return without_clock_time(compact_query(link->Doc())) == truth; }, TIMEOUT_MS);
        EXPECT_EQ(without_clock_time(compact_query(link->Doc())), truth);
    }

    /// A bare client reads until it has seen a line of every name in `names`, each with a good sum.
    void ExpectGoodSums(const std::vector<std::string>& names)
    {
        RawClient raw;
        ASSERT_TRUE(raw.Connect(sim->port));
        std::set<std::string> seen;
        raw.WaitFor([&](const std::string& line) {
            const std::string name = fields(line)[0];
            if (std::find(names.begin(), names.end(), name) != names.end()) {
                EXPECT_TRUE(Connector::VerifyCheckSum(line)) << line;
                seen.insert(name);
            }
            return seen.size() == names.size();
        });
        EXPECT_EQ(seen.size(), names.size());
    }

    /// Waits for a time stamp of this century in `spec`: a header that comes again (whenever the
    /// selection changes) zeroes the values until the next record.
    bool StampArrives(const std::string& spec)
    {
        return QTest::qWaitFor([&] { return link->VarNumeric(spec) > 1e9; }, TIMEOUT_MS);
    }

    std::unique_ptr<SimProcess> sim;
    std::shared_ptr<Connector> link;
    Heard heard;
};

TEST_F(SimModelLink, Dravik)
{
    Start("dravik", "leafy", {"DATA", "DATASTAT", "DATATEST"},
          {"DATA", "DATASTAT", "DATATEST", "DATALT", "DATACELLA", "DATACELLB"});
    // DATA carries the instrument's clock; the other records take the time of the last DATA.
    EXPECT_TRUE(StampArrives("leafy:DATA:TIME"));
    EXPECT_FALSE(link->Header("DATALTH").empty());

    link->OnSendRawXML("<arvex><dravik><cmd><connectlightsource>true</connectlightsource><poweroff>true</poweroff>"
                       "</cmd></dravik></arvex>\n");
    ASSERT_TRUE(heard.WaitForEvent("POWEROFF"));
    EXPECT_TRUE(heard.WaitForEvent("LIGHTSOURCECONNECTED"));
    link->OnSendRawXML("<arvex><dravik><cmd><disconnectlightsource>true</disconnectlightsource><poweron>true"
                       "</poweron></cmd></dravik></arvex>\n");
    EXPECT_TRUE(heard.WaitForEvent("POWERON"));
    EXPECT_TRUE(heard.WaitForEvent("LIGHTSOURCEDISCONNECTED"));

    // A zero and a span each leave a record of every coefficient in the history.
    ConfigDravik& conf = link->Doc_Dravik().Conf();
    link->OnSendRawXML("<arvex><dravik><cmd><co2bzero>true</co2bzero></cmd></dravik></arvex>\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return conf.History().children().size() == 1; }, TIMEOUT_MS));
    auto* zero = dynamic_cast<ConfigCalRecordDravik*>(conf.History().children().front());
    ASSERT_NE(zero, nullptr);
    EXPECT_EQ(zero->Type().get(), "CO2B Zero");
    EXPECT_EQ(zero->Co2bzero().get(), conf.Cal().Co2bzero().get());
    EXPECT_NE(zero->Co2bzero().get(), 1.0f);
    EXPECT_GT(zero->Time().get(), 1000000000);
    const float co2bzero = zero->Co2bzero().get();  // the list is replaced whole at its next change

    // The clock moves on to the next second first: the history tells its records apart by time.
    const double after = link->VarNumeric("leafy:DATA:TIME") + 1.0;
    ASSERT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("leafy:DATA:TIME") >= std::floor(after); },
                                TIMEOUT_MS));
    link->OnSendRawXML("<arvex><dravik><cal><h2oaspanconc2>20</h2oaspanconc2></cal><cmd><h2oaspan2>true</h2oaspan2>"
                       "</cmd></dravik></arvex>\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return conf.History().children().size() == 2; }, TIMEOUT_MS));
    auto* span = dynamic_cast<ConfigCalRecordDravik*>(conf.History().children().back());
    ASSERT_NE(span, nullptr);
    EXPECT_EQ(span->Type().get(), "H2OA Span2: 20");
    EXPECT_EQ(span->H2oaspan2().get(), conf.Cal().H2oaspan2().get());
    EXPECT_NEAR(span->H2oaspan2().get(), 1 / 1.012, 0.01);
    EXPECT_EQ(span->Co2bzero().get(), co2bzero);
    EXPECT_FALSE(conf.Cmd().H2oaspan2().get());
    ExpectMirrored("leafy");
}

TEST_F(SimModelLink, Quenta)
{
    Start("quenta", "console", {"DATA", "DATASTAT"}, {"DATA", "DATASTAT", "DATATEST", "DATALT"});
    EXPECT_TRUE(StampArrives("console:DATA:TIME"));

    link->Doc_Quenta().Conf().Cfg().Flow().Pump_percent().set(60);
    link->OnSendXMLChanges();
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("console:DATA:PUMP") > 55; }, TIMEOUT_MS));
    link->OnSendRawXML("<arvex><quenta><cmd><connectlightsource>true</connectlightsource></cmd></quenta></arvex>\n");
    ASSERT_TRUE(heard.WaitForEvent("LIGHTSOURCECONNECTED"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("console:DATADIAG:LIGHTSOURCE") == 1; }, TIMEOUT_MS));
    ExpectMirrored("console");
}

TEST_F(SimModelLink, Halden)
{
    Start("halden", "fluor", {"DATA", "DATASTAT", "DATATEST"}, {"DATA", "DATASTAT", "DATATEST"});
    EXPECT_TRUE(StampArrives("fluor:DATATEST:TIME"));

    ConfigHalden& conf = link->Doc_Halden().Conf();
    link->OnSendRawXML("<arvex><halden><cmd><zero_pc0>true</zero_pc0></cmd></halden></arvex>\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return conf.History().children().size() == 1; }, TIMEOUT_MS));
    auto* record = dynamic_cast<ConfigCalRecordHalden*>(conf.History().children().front());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->Type().get(), "Pc0 Zero");
    EXPECT_EQ(record->Pc0().get(), conf.Cal().Pc0().get());
    EXPECT_NE(record->Pc0().get(), 0);
    EXPECT_EQ(record->DC0().get(), 0);
    EXPECT_TRUE(heard.WaitForEvent("ZEROPC0"));
    ExpectMirrored("fluor");

    // The I/O console: text lines on the same socket, answered to their sender only.
    RawClient console;
    ASSERT_TRUE(console.Connect(sim->port));
    console.Send("w 1 2\nOUT\n\nclr\nout\n");
    auto answer = [&](const std::string& prefix) {
        return console.WaitFor([&](const std::string& line) { return line.rfind("FPGA", 0) == 0; }) == prefix;
    };
    for (const char* expected : {"FPGA ok w 1 2\n", "FPGA out 1\n", "FPGA clr\n", "FPGA out 0\n"})
        EXPECT_TRUE(answer(expected)) << expected;
    link->OnSendRawXML("x\nout\n");
    const size_t before = heard.data.size();
    EXPECT_TRUE(QTest::qWaitFor([&] { return heard.data.size() > before + 2; }, TIMEOUT_MS));
}

TEST_F(SimModelLink, Bremmel)
{
    const std::vector<std::string> kinds = {"DATA", "DATASTAT", "DATAGPS", "DATASONIC", "DATACH4"};
    Start("bremmel", "logger", kinds, kinds);
    // DATA's time is in its third and fourth fields, that of the others in their first two.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const double seconds = link->VarNumeric("logger:DATA:SECONDS");
        return seconds > 1e9 && std::abs(link->Time() - seconds) < 2.0;
    }, TIMEOUT_MS));

    link->OnSendRawXML("<arvex><bremmel><cmd><logusbstart>true</logusbstart></cmd></bremmel></arvex>\n");
    ASSERT_TRUE(heard.WaitForEvent("LOGUSBSTART"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("logger:DATADIAG:USBLOGGING") == 1; }, TIMEOUT_MS));
}

TEST_F(SimModelLink, Ostrel)
{
    Start("ostrel", "ost", {"DATA"}, {"DATA"});
    EXPECT_GT(link->Time(), 1e9);
    link->Doc_Ostrel().Conf().Flow().set(0.25f);
    link->OnSendXMLChanges();
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("ost:DATA:FLOWSET") == 0.25; }, TIMEOUT_MS));
    ExpectMirrored("");
}

}  // namespace
