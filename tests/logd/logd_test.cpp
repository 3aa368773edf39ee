// sondar-logd end to end: real simulators on loopback, a SQLite file and a PostgreSQL server of
// the test's own. What an independent client of the same simulator read is the truth.

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <csignal>
#include <map>
#include <utility>

#include "tests/sim/sim_process.h"
#include "tests/store/database.h"

namespace {

using Stamp = std::pair<long long, long long>;  // seconds, nanoseconds of a DATA record

class Logd {
public:
    Logd(const QString& directory, QStringList arguments)
    {
        process.setWorkingDirectory(directory);
        process.start(SONDAR_LOGD, arguments << "--spool" << directory + "/spool");
    }
    ~Logd()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(TIMEOUT_MS);
        }
    }
    /// SIGTERM; whether it then ended by itself with status 0.
    bool Terminate()
    {
        ::kill(pid_t(process.processId()), SIGTERM);
        return process.waitForFinished(TIMEOUT_MS) && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }
    QProcess process;
};

// How many clients the simulator has taken so far.
int clients(SimProcess& sim)
{
    return int(sim.Log().count(" connected\n"));
}

// The DATA records that `client` reads until it has `count` more of them.
std::vector<Stamp> read_data(RawClient& client, size_t count)
{
    std::vector<Stamp> stamps;
    client.WaitFor([&](const std::string& line) {
        const std::vector<std::string> f = fields(line);
        if (f.size() > 3 && f[0] == "DATA")
            stamps.emplace_back(std::stoll(f[2]), std::stoll(f[3]));
        return stamps.size() >= count;
    });
    EXPECT_EQ(stamps.size(), count);
    return stamps;
}

// Every record the client read from the logger's first stored one on is stored exactly once.
void expect_each_once(const std::string& target, const std::vector<Stamp>& read)
{
    std::map<Stamp, int> stored;
    for (const auto& row : query(target, "SELECT CAST(seconds AS bigint), CAST(nanoseconds AS bigint) FROM tolvan_data"))
        ++stored[{std::stoll(row[0]), std::stoll(row[1])}];
    ASSERT_FALSE(stored.empty());
    int checked = 0;
    for (const Stamp& stamp : read)
        if (stamp >= stored.begin()->first) {
            EXPECT_EQ(stored[stamp], 1) << stamp.first << "." << stamp.second;
            ++checked;
        }
    EXPECT_GT(checked, 60);
    for (const auto& [stamp, count] : stored)
        EXPECT_EQ(count, 1) << stamp.first << "." << stamp.second;
}

std::vector<std::string> kinds(const std::string& target)
{
    std::vector<std::string> found;
    for (const auto& row : query(target, "SELECT kind FROM events WHERE kind <> 'event' ORDER BY received_at"))
        found.push_back(row[0]);
    return found;
}

}  // namespace

// Into SQLite, committing only at SIGTERM: a bad entry is skipped, a description file's instrument
// is logged beside the command line's, a simulator killed and started again is logged again.
TEST(LogdTest, SqliteKeepsEveryRecordAcrossAnInstrumentRestart)
{
    QTemporaryDir dir;
    SimProcess tolvan({"--model", "tolvan", "--name", "t1"}), halden({"--model", "halden", "--name", "h1"});
    ASSERT_TRUE(tolvan.WaitListening() && halden.WaitListening());
    QFile description(dir.filePath("sondar.xml"));
    ASSERT_TRUE(description.open(QIODevice::WriteOnly));
    description.write("<config><instruments><instrument><name>h1</name><model>halden</model>"
                      "<address>127.0.0.1</address><port>" + QByteArray::number(halden.port) +
                      "</port></instrument></instruments></config>");
    description.close();
    RawClient truth;
    ASSERT_TRUE(truth.Connect(tolvan.port));
    const std::string target = "sqlite:" + dir.filePath("station.db").toStdString();
    Logd logd(dir.path(), {"--instrument", "t1=tolvan@127.0.0.1:" + QString::number(tolvan.port), "--instrument",
                           "bad=nomodel@127.0.0.1", "--description", description.fileName(), "--db",
                           QString::fromStdString(target), "--batch-ms", "600000"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return clients(tolvan) == 2; }, TIMEOUT_MS)) << tolvan.Log().toStdString();
    const std::vector<Stamp> read = read_data(truth, 80);

    // Killed: the logger reads what was sent up to the end and hears the end; then it dials again.
    tolvan.process.kill();
    ASSERT_TRUE(tolvan.process.waitForFinished(TIMEOUT_MS));
    tolvan.output.clear();
    tolvan.process.start(tolvan.process.program(), tolvan.process.arguments());
    ASSERT_TRUE(tolvan.WaitListening());
    ASSERT_TRUE(QTest::qWaitFor([&] { return clients(tolvan) == 3; }, TIMEOUT_MS));

    ASSERT_TRUE(logd.Terminate()) << logd.process.readAllStandardError().toStdString();
    const std::string errors = logd.process.readAllStandardError().toStdString();
    EXPECT_NE(errors.find("skipping --instrument \"bad=nomodel@127.0.0.1\": unknown model"), std::string::npos)
        << errors;
    EXPECT_NE(errors.find("2 of 2 instruments connected"), std::string::npos) << errors;
    expect_each_once(target, read);
    EXPECT_EQ(query(target, "SELECT name, model FROM instruments ORDER BY name"),
              (Rows{{"h1", "halden"}, {"t1", "tolvan"}}));
    EXPECT_FALSE(query(target, "SELECT 1 FROM halden_data").empty());
    EXPECT_EQ(query(target, "SELECT kind FROM events WHERE kind <> 'event' AND instrument_id = "
                            "(SELECT id FROM instruments WHERE name = 't1') ORDER BY received_at"),
              (Rows{{"connected"}, {"disconnected"}, {"connected"}}));
}

// Into PostgreSQL, which is stopped for 10 s mid-run: rows wait in the spool and arrive once each.
TEST(LogdTest, PostgresqlOutageLosesNothing)
{
    PgServer server;
    ASSERT_TRUE(server.ready) << server.Log();
    QTemporaryDir dir;
    SimProcess tolvan({"--model", "tolvan", "--name", "t1"});
    ASSERT_TRUE(tolvan.WaitListening());
    RawClient truth;
    ASSERT_TRUE(truth.Connect(tolvan.port));
    Logd logd(dir.path(), {"--instrument", "t1=tolvan@127.0.0.1:" + QString::number(tolvan.port), "--db",
                           QString::fromStdString(server.Uri()), "--batch-ms", "200"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return kinds(server.Uri()).size() == 1; }, TIMEOUT_MS));
    std::vector<Stamp> read = read_data(truth, 40);

    ASSERT_TRUE(server.Stop()) << server.Log();
    const QDir spool(dir.filePath("spool"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !spool.entryList({"*.batch"}).isEmpty(); }, TIMEOUT_MS));
    QTest::qWait(10000);  // the outage itself, not a wait for something
    ASSERT_TRUE(server.Start()) << server.Log();
    ASSERT_TRUE(QTest::qWaitFor([&] { return kinds(server.Uri()).size() == 3; }, TIMEOUT_MS));
    for (const Stamp& stamp : read_data(truth, 40))
        read.push_back(stamp);

    // Once its disconnection is stored, everything the logger read before it is.
    tolvan.process.terminate();
    ASSERT_TRUE(QTest::qWaitFor([&] { return kinds(server.Uri()).size() == 4; }, TIMEOUT_MS));
    ASSERT_TRUE(logd.Terminate()) << logd.process.readAllStandardError().toStdString();
    expect_each_once(server.Uri(), read);
    EXPECT_EQ(kinds(server.Uri()), (std::vector<std::string>{"connected", "spooled", "replayed", "disconnected"}));
    EXPECT_TRUE(spool.entryList({"*.batch"}).isEmpty());
}

// With --browse, an instrument that announces itself is logged (inside mdns_sandbox.sh only).
TEST(LogdTest, BrowseLogsWhatIsAnnounced)
{
    if (qEnvironmentVariableIsEmpty("SONDAR_MDNS_SANDBOX"))
        GTEST_SKIP() << "needs the private daemon: run through tests/discovery/mdns_sandbox.sh";
    QTemporaryDir dir;
    SimProcess halden({"--model", "halden", "--name", "announced-halden", "--announce"});
    ASSERT_TRUE(QTest::qWaitFor([&] {
        halden.output += halden.process.readAllStandardOutput();
        return halden.output.contains("announced announced-halden");
    }, TIMEOUT_MS));
    const std::string target = "sqlite:" + dir.filePath("browsed.db").toStdString();
    Logd logd(dir.path(), {"--browse", "--db", QString::fromStdString(target), "--batch-ms", "100"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !query(target, "SELECT 1 FROM halden_data").empty(); }, TIMEOUT_MS));
    ASSERT_TRUE(logd.Terminate());
    EXPECT_EQ(query(target, "SELECT name, model, address, port FROM instruments"),
              (Rows{{"announced-halden", "halden", "127.0.0.1", std::to_string(halden.port)}}));
}
