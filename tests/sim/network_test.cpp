// The real sondar-sim on 127.0.0.1, with the real Connector and bare sockets as clients; faults between them.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>

#include <csignal>
#include <fstream>

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

}  // namespace
