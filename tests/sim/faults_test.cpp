// Faults between the real sondar-sim and the real Connector.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "link/connector.h"
#include "sim_process.h"
#include "sim_test_util.h"

namespace {

std::shared_ptr<Connector> connected(const std::string& name, int port, Heard& data)
{
    auto link = std::make_shared<Connector>(nullptr, name, "morvik");
    link->RegisterListener("DATA", &data);
    link->Connect("127.0.0.1", 0, port);
    EXPECT_TRUE(data.WaitForData(2)) << name;
    return link;
}

TEST(SimFaults, AKilledInstrumentLosesNoLoggedLine)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("log.txt").toStdString();
    SimProcess sim({"--model", "morvik", "--name", "mortal", "--rate", "20"});
    ASSERT_TRUE(sim.WaitListening());
    Connector::SetMessageBox([](QWidget*, const QString&, const QString&) {});
    Heard data;
    auto link = connected("mortal", sim.port, data);
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
    Connector::SetMessageBox(nullptr);

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
TEST(SimFaults, LinesCutIntoOneByteSegmentsArriveWhole)
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
