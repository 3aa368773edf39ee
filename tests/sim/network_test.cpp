// The real sondar-sim on 127.0.0.1, with the real Connector and bare sockets as clients.

#include <gtest/gtest.h>

#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <fstream>
#include <functional>
#include <sstream>

#include "link/connector.h"
#include "sim/spectrum.h"
#include "sim_process.h"
#include "sim_test_util.h"

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

    /// A link of `type` to the simulator, listened to by `heard`, with its opening sequence done.
    std::shared_ptr<Connector> Link(const std::string& name, const std::string& type, int port, Heard& heard)
    {
        auto link = std::make_shared<Connector>(nullptr, name, type);
        for (const char* record : {"DATA", "DATAEVENT"})
            link->RegisterListener(record, &heard);
        link->Connect("127.0.0.1", 0, port);
        // The replica is filled once the name has come, and for a Tolvan once its selection is back.
        EXPECT_TRUE(QTest::qWaitFor([&] {
            const std::string doc = compact_query(link->Doc());
            return doc.find("<waveforms>true</waveforms><status>true</status><dataclock>true") != std::string::npos ||
                   (type != "tolvan" && doc.find("<name>" + std::string(name) + "</name>") != std::string::npos);
        }, TIMEOUT_MS)) << name;
        return link;
    }

    std::vector<QString> boxes;
};

TEST_F(SimNetwork, TheOpeningSequenceMirrorsTheDocument)
{
    for (const std::string model : {"tolvan", "morvik"}) {
        SimProcess sim({"--model", QString::fromStdString(model), "--name", "mirror"});
        ASSERT_TRUE(sim.WaitListening()) << model;
        Heard heard;
        auto link = Link("mirror", model, sim.port, heard);

        const std::string truth = query_truth(sim.port);
        EXPECT_NE(truth.find("<name>mirror</name>"), std::string::npos);
        EXPECT_EQ(without_clock_time(compact_query(link->Doc())), without_clock_time(truth)) << model;
        EXPECT_FALSE(link->Header("DATAH").empty());
    }
}

TEST_F(SimNetwork, DataArriveAtTheRate)
{
    SimProcess sim({"--model", "tolvan", "--name", "rate", "--rate", "10"});
    ASSERT_TRUE(sim.WaitListening());
    Heard heard;
    auto link = Link("rate", "tolvan", sim.port, heard);
    ASSERT_TRUE(heard.WaitForData(20));
    // The records are stamped 0.1 s apart, and arrive no faster: more than a second apart
    // cannot be a burst, however the machine stalls.
    for (size_t i = 1; i < heard.times.size(); ++i)
        EXPECT_NEAR(heard.times[i] - heard.times[i - 1], 0.1, 1e-6) << i;
    EXPECT_GE(heard.arrivals.back() - heard.arrivals.front(), 800);
}

TEST_F(SimNetwork, AChangeFromOneReplicaReachesTheOther)
{
    SimProcess sim({"--model", "tolvan", "--name", "shared"});
    ASSERT_TRUE(sim.WaitListening());
    Heard heard_a, heard_b;
    auto a = Link("shared-a", "tolvan", sim.port, heard_a);
    auto b = Link("shared-b", "tolvan", sim.port, heard_b);

    ConfigLaserCooler& cooler = a->Doc_Tolvan().Conf().Cfg().Linelock().Lasercooler();
    cooler.Temp().set(31.5f);
    a->Doc_Tolvan().Conf().Cfg().Heater().Top().Heaterpower().set(55);
    a->OnSendXMLChanges();

    DocTolvan& other = b->Doc_Tolvan();
    ASSERT_TRUE(QTest::qWaitFor([&] { return other.Conf().Cfg().Heater().Top().Heaterpower().get() == 55; },
                                TIMEOUT_MS));
    EXPECT_EQ(other.Conf().Cfg().Linelock().Lasercooler().Temp().get(), 31.5f);
}

// A client that sends garbage, or does not read, or never ends its line, costs the others nothing.
TEST_F(SimNetwork, BadClientsStallNobody)
{
    SimProcess sim({"--model", "tolvan", "--name", "vandal"});
    ASSERT_TRUE(sim.WaitListening());
    Heard heard;
    auto link = Link("victim", "tolvan", sim.port, heard);

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
    EXPECT_EQ(vandal.WaitFor([](const std::string& line) { return line.rfind("vandal", 0) == 0; }), "vandal\n");

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
}

TEST_F(SimNetwork, ARebootClosesEveryClientAndComesBack)
{
    SimProcess sim({"--model", "tolvan", "--name", "phoenix"});
    ASSERT_TRUE(sim.WaitListening());
    Heard heard;
    auto link = Link("phoenix", "tolvan", sim.port, heard);
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

TEST_F(SimNetwork, SignalsEndItCleanly)
{
    for (int signal : {SIGTERM, SIGINT}) {
        SimProcess sim({"--model", "morvik", "--name", "quiet"});
        ASSERT_TRUE(sim.WaitListening());
        RawClient client;
        ASSERT_TRUE(client.Connect(sim.port));
        ASSERT_FALSE(client.WaitFor([](const std::string& line) { return line.rfind("DATA\t", 0) == 0; }).empty());
        ::kill(pid_t(sim.process.processId()), signal);
        ASSERT_TRUE(QTest::qWaitFor([&] { return sim.process.state() == QProcess::NotRunning; }, TIMEOUT_MS));
        EXPECT_EQ(sim.process.exitStatus(), QProcess::NormalExit) << signal;
        EXPECT_EQ(sim.process.exitCode(), 0) << signal << sim.Log().toStdString();
    }
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
    const struct {
        QStringList arguments;
        int status;
    } cases[] = {
        {{}, 2},
        {{"--model", "tolvan"}, 2},
        {{"--name", "x"}, 2},
        {{"--model", "quux", "--name", "x"}, 2},
        {{"--model", "tolvan", "--name", "x", "--rate", "3"}, 2},
        {{"--model", "morvik", "--name", "x", "--rate", "-1"}, 2},
        {{"--model", "tolvan", "--name", "x", "--port", "0"}, 2},
        {{"--model", "tolvan", "--name", "x", "--port", "65536"}, 2},
        {{"--model", "tolvan", "--name", "x", "--listen", "nowhere"}, 2},
        {{"--model", "tolvan", "--name", "x", "--speed", "0"}, 2},
        {{"--model", "tolvan", "--name", "x", "--speed", "fast"}, 2},
        {{"--model", "tolvan", "--name", "x", "--name", "y"}, 2},
        {{"--model", "tolvan", "--name", "x", "--stdio"}, 2},
        {{"--model", "tolvan", "--name"}, 2},
        {{"--dump-spectrum", "/nonexistent-directory/spectrum.txt"}, 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(run_to_end(c.arguments), c.status) << c.arguments.join(" ").toStdString();

    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost, 0));
    EXPECT_EQ(run_to_end({"--model", "tolvan", "--name", "x", "--port", QString::number(taken.serverPort())}), 1);
}

TEST(SimCommandLine, DumpSpectrumWritesTheGroundTruth)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("spectrum.txt");
    ASSERT_EQ(run_to_end({"--dump-spectrum", path}), 0);
    std::ifstream file(path.toStdString());
    std::stringstream written;
    written << file.rdbuf();
    std::ostringstream truth;
    SimSpectrum::Dump(truth);
    EXPECT_EQ(written.str(), truth.str());
}

}  // namespace
