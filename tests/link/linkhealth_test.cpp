// A link's health on a clock the test sets; a connector's counters through a relay that breaks sums.

#include "link/linkhealth.h"
#include "tests/service/wire.h"
#include "tests/sim/sim_process.h"

namespace {

// 2026-11-25 16:30:00 local time, plus `seconds`; `when` takes a negative time for the epoch.
LinkClock::time_point at(double seconds)
{
    std::tm start{};
    start.tm_year = 126, start.tm_mon = 10, start.tm_mday = 25, start.tm_hour = 16, start.tm_min = 30;
    start.tm_isdst = -1;
    return LinkClock::from_time_t(std::mktime(&start)) +
           std::chrono::duration_cast<LinkClock::duration>(std::chrono::duration<double>(seconds));
}
LinkClock::time_point when(double seconds) { return seconds < 0 ? LinkClock::time_point{} : at(seconds); }

// One link through an outage, a redial and a second, quiet outage; alarm threshold 10 s.
TEST(LinkHealth, StatesAgesRatesAndOneAlertPerOutage)
{
    using S = LinkHealth::Socket;
    const struct {
        double now; S socket; uint64_t records; double last, down, redial; bool logging; uint64_t bytes;
        const char *state, *age; double rate; bool stale, alert, stalled;
    } steps[] = {
        {0, S::Connecting, 0, -1, -1, -1, false, 0, "connecting", "-", 0, false, false, false},
        {2, S::Connected, 10, 2, -1, -1, true, 100, "connected", "0 s", 5, false, false, false},
        {12, S::Connected, 60, 11.5, -1, -1, true, 900, "connected", "0 s", 5, false, false, false},
        {15, S::Idle, 60, 11.5, 13, -1, true, 900, "disconnected since 16:30:13", "3 s", 50.0 / 13, false, false, false},
        {22.5, S::Idle, 60, 11.5, 13, 2.5, true, 900, "reconnecting in 3 s (down since 16:30:13)", "11 s", 0, true, true, true},
        {24, S::Connecting, 60, 11.5, 13, -1, true, 900, "connecting", "12 s", 0, true, false, true},
        {25, S::Connected, 63, 25, 13, -1, true, 1000, "connected", "0 s", 0.3, false, false, false},
        {36, S::Connected, 63, 25, 13, -1, true, 1000, "connected", "11 s", 0, true, true, true},
        {37, S::Connected, 63, 25, 13, -1, false, 1000, "connected", "12 s", 0, true, false, false},
    };
    LinkHealth health(at(0));
    for (const auto& s : steps) {
        const LinkCounters counters{when(s.last), s.records, 0, s.bytes, 0, when(s.down)};
        const LinkHealth::Figures f = health.Read({s.socket, counters, s.logging, s.redial}, at(s.now), 10);
        EXPECT_EQ(f.state + "|" + f.age, std::string(s.state) + "|" + s.age) << s.now;
        EXPECT_NEAR(f.rate, s.rate, 1e-9) << s.now;
        EXPECT_EQ(std::make_tuple(f.stale, f.alert, f.log_stalled), std::make_tuple(s.stale, s.alert, s.stalled)) << s.now;
    }

    // A link that never came up ages from when it was first read; a loss before today shows its date.
    LinkHealth never_up(at(0));
    LinkHealth::Reading idle;
    EXPECT_EQ(never_up.Read(idle, at(11), 10).state + std::to_string(never_up.Read(idle, at(11), 10).stale),
              "disconnected1");
    idle.counters.down_since = at(-24 * 3600);
    EXPECT_EQ(never_up.Read(idle, at(12), 10).state, "disconnected since 2026-11-24 16:30:00");
    EXPECT_EQ(AgeText(59.9) + "|" + AgeText(60) + "|" + AgeText(3725), "59 s|1 min 0 s|1 h 2 min");
    EXPECT_EQ(LinkGapLine(at(5), at(3600)),
              "DATAEVENT\tLINKGAP\tlink down from 2026-11-25T16:30:05 to 2026-11-25T17:30:00\n");
}

// A relay from a simulator to the link adds, after every third DATA record, a copy with a broken sum
// and a line of no known record. The link counts exactly what it took, dropped and logged.
TEST(LinkCounters, ExactThroughARelayThatBreaksSums)
{
    SimProcess sim({"--model", "tolvan", "--name", "relayed", "--rate", "20"});
    RawClient upstream;
    ASSERT_TRUE(sim.WaitListening() && upstream.Connect(sim.port));
    QTcpServer relay;
    ASSERT_TRUE(relay.listen(QHostAddress::LocalHost));
    QTemporaryDir dir;
    auto connector = Connector::Factory(nullptr, "relayed", "tolvan");
    connector->SetLogFileName(dir.filePath("relayed.txt").toStdString());
    connector->StartLoggingToFile();
    connector->Connect("127.0.0.1", 0, relay.serverPort());
    ASSERT_TRUE(relay.waitForNewConnection(TIMEOUT_MS));
    QTcpSocket* downstream = relay.nextPendingConnection();
    QObject::connect(downstream, &QTcpSocket::readyRead, [&] { upstream.socket.write(downstream->readAll()); });
    uint64_t records = 0, data = 0, broken = 0;
    QObject::connect(&upstream.socket, &QTcpSocket::readyRead, [&] {
        while (upstream.socket.canReadLine() && records < 200) {
            std::string line = upstream.socket.readLine().toStdString();
            downstream->write(line.c_str());
            records += line[0] != '<';
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
    connector->StopLoggingToFile();
    const LinkCounters& c = connector->Counters();
    EXPECT_EQ(std::make_tuple(c.records, c.bad_lines, c.connections, c.bytes_logged),
              std::make_tuple(records, broken, 1u, uint64_t(QFileInfo(dir.filePath("relayed.txt")).size())));
}

}  // namespace
