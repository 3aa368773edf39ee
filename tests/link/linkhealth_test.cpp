// How a link's health reads over time, on a clock the test sets; and the counters a connector keeps,
// exact through a relay that breaks sums.

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <ctime>

#include "link/linkhealth.h"
#include "tests/sim/sim_process.h"

namespace {

// 2026-11-25 16:30:00 local time, plus `seconds`.
LinkClock::time_point at(double seconds)
{
    std::tm start{};
    start.tm_year = 126, start.tm_mon = 10, start.tm_mday = 25, start.tm_hour = 16, start.tm_min = 30;
    start.tm_isdst = -1;
    return LinkClock::from_time_t(std::mktime(&start)) +
           std::chrono::duration_cast<LinkClock::duration>(std::chrono::duration<double>(seconds));
}

// One link through an outage, a redial and a second, quiet outage; alarm threshold 10 s.
TEST(LinkHealth, StatesAgesRatesAndOneAlertPerOutage)
{
    using S = LinkHealth::Socket;
    const double never = -1e9;  // the epoch, well before the start
    const struct {
        double now;
        S socket;
        uint64_t records;
        double last_record, down_since, redial_in;
        bool logging;
        uint64_t bytes;
        const char* state;
        const char* age;
        double rate;
        bool stale, alert, log_stalled;
    } steps[] = {
        {0, S::Connecting, 0, never, never, -1, false, 0, "connecting", "-", 0, false, false, false},
        {2, S::Connected, 10, 2, never, -1, true, 100, "connected", "0 s", 5, false, false, false},
        {12, S::Connected, 60, 11.5, never, -1, true, 900, "connected", "0 s", 5, false, false, false},
        {15, S::Idle, 60, 11.5, 13, -1, true, 900, "disconnected since 16:30:13", "3 s", 50.0 / 13, false, false, false},
        {22.5, S::Idle, 60, 11.5, 13, 2.5, true, 900, "reconnecting in 3 s (down since 16:30:13)", "11 s", 0, true, true, true},
        {24, S::Connecting, 60, 11.5, 13, -1, true, 900, "connecting", "12 s", 0, true, false, true},
        {25, S::Connected, 63, 25, 13, -1, true, 1000, "connected", "0 s", 0.3, false, false, false},
        {36, S::Connected, 63, 25, 13, -1, true, 1000, "connected", "11 s", 0, true, true, true},
        {37, S::Connected, 63, 25, 13, -1, false, 1000, "connected", "12 s", 0, true, false, false},
    };
    LinkHealth health(at(0));
    for (const auto& step : steps) {
        LinkHealth::Reading reading;
        reading.socket = step.socket;
        reading.counters.records = step.records;
        reading.counters.last_record = step.records ? at(step.last_record) : LinkClock::time_point{};
        reading.counters.down_since = step.down_since == never ? LinkClock::time_point{} : at(step.down_since);
        reading.counters.bytes_logged = step.bytes;
        reading.logging = step.logging;
        reading.redial_in = step.redial_in;
        const LinkHealth::Figures figures = health.Read(reading, at(step.now), 10);
        SCOPED_TRACE(step.now);
        EXPECT_EQ(figures.state, step.state);
        EXPECT_EQ(figures.age, step.age);
        EXPECT_NEAR(figures.rate, step.rate, 1e-9);
        EXPECT_EQ(std::make_tuple(figures.stale, figures.alert, figures.log_stalled),
                  std::make_tuple(step.stale, step.alert, step.log_stalled));
    }

    // A link that never came up ages from when it was first read; a loss before today shows its date.
    LinkHealth never_up(at(0));
    LinkHealth::Reading idle;
    const LinkHealth::Figures first = never_up.Read(idle, at(11), 10);
    EXPECT_EQ(first.state + "|" + first.age + "|" + std::to_string(first.stale), "disconnected|-|1");
    idle.counters.down_since = at(-24 * 3600);
    EXPECT_EQ(never_up.Read(idle, at(12), 10).state, "disconnected since 2026-11-24 16:30:00");

    EXPECT_EQ(AgeText(59.9) + "|" + AgeText(60) + "|" + AgeText(3725), "59 s|1 min 0 s|1 h 2 min");
    EXPECT_EQ(LinkGapLine(at(5), at(3600)),
              "DATAEVENT\tLINKGAP\tlink down from 2026-11-25T16:30:05 to 2026-11-25T17:30:00\n");
}

// A relay between a simulator and the link passes every line on, and after every third DATA record
// a copy with a broken sum and a line of no known record. The link counts exactly what it took,
// dropped, and wrote to its log.
TEST(LinkCounters, ExactThroughARelayThatBreaksSums)
{
    SimProcess sim({"--model", "tolvan", "--name", "relayed", "--rate", "20"});
    ASSERT_TRUE(sim.WaitListening());
    QTcpSocket upstream;
    upstream.connectToHost(QHostAddress::LocalHost, quint16(sim.port));
    ASSERT_TRUE(upstream.waitForConnected(TIMEOUT_MS));
    QTcpServer relay;
    ASSERT_TRUE(relay.listen(QHostAddress::LocalHost));

    QTemporaryDir dir;
    auto connector = Connector::Factory(nullptr, "relayed", "tolvan");
    connector->SetLogFileName(dir.filePath("relayed.txt").toStdString());
    connector->StartLoggingToFile();
    connector->Connect("127.0.0.1", 0, relay.serverPort());
    ASSERT_TRUE(relay.waitForNewConnection(TIMEOUT_MS));
    QTcpSocket* downstream = relay.nextPendingConnection();
    QObject::connect(downstream, &QTcpSocket::readyRead, [&] { upstream.write(downstream->readAll()); });

    uint64_t records = 0, data = 0, broken = 0;
    QObject::connect(&upstream, &QTcpSocket::readyRead, [&] {
        while (upstream.canReadLine() && records < 200) {
            std::string line = upstream.readLine().toStdString();
            downstream->write(line.data(), qint64(line.size()));
            if (line[0] == '<')
                continue;
            ++records;
            if (line.compare(0, 5, "DATA\t") == 0 && ++data % 3 == 0) {
                line[line.size() - 2] = line[line.size() - 2] == '0' ? '1' : '0';
                downstream->write((line + "NOISE\t1\t2\n").c_str());
                ++broken;
            }
        }
    });
    QSignalSpy disconnected(connector.get(), &Connector::Disconnected);
    ASSERT_TRUE(QTest::qWaitFor([&] { return records == 200; }, TIMEOUT_MS));
    downstream->disconnectFromHost();
    ASSERT_TRUE(disconnected.wait(TIMEOUT_MS));

    const LinkCounters& counters = connector->Counters();
    EXPECT_GT(broken, 5u);
    EXPECT_EQ(counters.records, records);
    EXPECT_EQ(counters.bad_lines, broken);
    EXPECT_EQ(counters.connections, 1u);
    connector->StopLoggingToFile();
    EXPECT_EQ(counters.bytes_logged, uint64_t(QFileInfo(dir.filePath("relayed.txt")).size()));
}

}  // namespace
