// The client against a real avahi-daemon, only inside mdns_sandbox.sh (loopback and a private daemon).

#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>

#include <net/if.h>

#include <algorithm>
#include <set>

#include "discovery/bonjourclient.h"
#include "discovery_test_util.h"

namespace {

// The daemon answers within milliseconds on loopback; the bound is for loaded machines.
constexpr int kTimeoutMs = 20000;
const char* const kType = "_arvex-tolvan._tcp";

class Daemon : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("SONDAR_MDNS_SANDBOX"))
            GTEST_SKIP() << "needs the private daemon: run through tests/discovery/mdns_sandbox.sh";
        // Multicast DNS must not reach a real network: refuse to run beside anything but lo.
        ASSERT_EQ(InterfaceNames(), std::vector<std::string>{"lo"});
    }

    /// Registers `name` with the TXT entries below and waits until the daemon has announced it.
    std::unique_ptr<BonjourClient> Announce(RecordingListener& listener, const std::string& name)
    {
        auto client = std::make_unique<BonjourClient>(&listener);
        client->Register(name, kType, "", 4410, txt);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !listener.registered.empty(); }, kTimeoutMs));
        return client;
    }

    /// Waits until `listener` has heard of `name` twice (127.0.0.1, ::1), and a little longer for one too many.
    static std::vector<FoundAddress> Found(RecordingListener& listener, const std::string& name)
    {
        auto of_name = [&] {
            std::vector<FoundAddress> found;
            for (const FoundAddress& f : listener.added)
                if (f.name == name)
                    found.push_back(f);
            return found;
        };
        EXPECT_TRUE(QTest::qWaitFor([&] { return of_name().size() >= 2; }, kTimeoutMs));
        QTest::qWait(500);
        return of_name();
    }

    /// Waits until `listener` has heard that `name` of `type` went away.
    static bool Removed(RecordingListener& listener, const std::string& name, const std::string& type)
    {
        const std::string removal = name + "|" + type + ".|local.";
        return QTest::qWaitFor([&] {
            return std::find(listener.removed.begin(), listener.removed.end(), removal) != listener.removed.end();
        }, kTimeoutMs);
    }

    const std::map<std::string, std::string> txt{{"model", "Tolvan probe"}, {"ver", "1.0"}, {"company", "Arvex"}};
};

TEST_F(Daemon, RegisteredServiceIsFoundWithdrawnAndFoundAgainAfterClear)
{
    RecordingListener announcer;
    auto staying = Announce(announcer, "sondar-stays");
    auto leaving = Announce(announcer, "sondar-leaves");
    // The daemon reports the domain as it was given: empty for the default one.
    EXPECT_EQ(announcer.registered[0], "sondar-stays|_arvex-tolvan._tcp.|");
    EXPECT_TRUE(announcer.errors.empty()) << announcer.errors.front();

    RecordingListener browser;
    BonjourClient client(&browser);
    client.Browse(kType);
    ASSERT_EQ(Found(browser, "sondar-leaves").size(), 2u);
    const std::vector<FoundAddress> found = Found(browser, "sondar-stays");
    ASSERT_EQ(found.size(), 2u);
    for (const FoundAddress& f : found)
        EXPECT_EQ(f.txt, txt);

    // Services of earlier tests may be saying goodbye too.
    leaving.reset();
    EXPECT_TRUE(Removed(browser, "sondar-leaves", kType));
    browser.added.clear();
    client.Clear();
    client.Browse(kType);
    EXPECT_EQ(Found(browser, "sondar-stays").size(), 2u);
    for (const FoundAddress& f : browser.added)
        EXPECT_NE(f.name, "sondar-leaves");
    EXPECT_TRUE(browser.errors.empty()) << browser.errors.front();

    // This platform's library does not reconfirm records: the failure is a message, not a crash.
    staying->Confirm("sondar-sandbox.local.", Address("127.0.0.1", 0));
    staying->Confirm("sondar-sandbox.local.", Address("::1", 0));
    EXPECT_EQ(announcer.errors, (std::vector<std::string>{"Unable to confirm: sondar-sandbox.local.: Unsupported",
                                                          "Unable to confirm: sondar-sandbox.local.: Unsupported"}));
}

/// Starts sondar-sim with `arguments` and waits until its standard output has shown `line`.
bool StartSimulator(QProcess& sim, const QStringList& arguments, const QString& line)
{
    sim.start(SONDAR_SIM, arguments);
    QString output;
    return QTest::qWaitFor([&] {
        output += QString::fromUtf8(sim.readAllStandardOutput());
        return output.contains(line);
    }, kTimeoutMs);
}

TEST_F(Daemon, SimulatorAnnouncesItselfOnlyWithAnnounce)
{
    const struct {
        const char *model, *name, *type;
        int port;
    } rows[] = {
        {"tolvan", "ch4-sim-1", "_arvex-tolvan._tcp", 4410},
        {"sarnel", "sarnel-sim-1", "_arvex-sarnel._tcp", 4420},
        {"morvik", "morvik-sim-1", "_arvex-morvik._tcp", 4420},
    };
    // Beside them all, one started without --announce, which no browse must find.
    QProcess quiet;
    ASSERT_TRUE(StartSimulator(quiet, {"--model", "tolvan", "--name", "ch4-quiet", "--port", "4411"}, "listening on"));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.model);
        QProcess sim;
        ASSERT_TRUE(StartSimulator(sim, {"--model", row.model, "--name", row.name, "--announce"},
                                   QString("announced ") + row.name + " as " + row.type));

        RecordingListener browser;
        BonjourClient client(&browser);
        client.Browse(row.type);
        const std::vector<FoundAddress> found = Found(browser, row.name);
        ASSERT_EQ(found.size(), 2u);
        std::set<SocketAddress> addresses;
        for (const FoundAddress& f : browser.added)
            EXPECT_NE(f.name, "ch4-quiet");
        for (const FoundAddress& f : found) {
            EXPECT_EQ(f.type + "|" + f.domain + "|" + f.host, row.type + std::string(".|local.|sondar-sandbox.local."));
            EXPECT_EQ(f.interface_index, if_nametoindex("lo"));
            EXPECT_EQ(f.txt.at("company"), "Arvex");
            EXPECT_FALSE(f.txt.at("ver").empty());
            if (std::string(row.model) == "tolvan")
                EXPECT_NE(f.txt.at("model").find("Tolvan"), std::string::npos);
            else
                EXPECT_EQ(f.txt.at("model"), "Pelsen");
            addresses.insert(f.address);
        }
        // ::1 is no link-local address: its scope stays 0.
        EXPECT_EQ(addresses, (std::set<SocketAddress>{Address("127.0.0.1", row.port), Address("::1", row.port)}));

        if (std::string(row.model) == "tolvan") {
            QProcess browse;
            browse.start("avahi-browse", {"--resolve", "--terminate", "--parsable", row.type});
            ASSERT_TRUE(browse.waitForFinished(kTimeoutMs));
            const QString output = QString::fromUtf8(browse.readAllStandardOutput());
            EXPECT_TRUE(output.contains(";ch4-sim-1;_arvex-tolvan._tcp;local;sondar-sandbox.local;127.0.0.1;4410;"))
                << output.toStdString();
            EXPECT_TRUE(output.contains("\"company=Arvex\"")) << output.toStdString();
            EXPECT_FALSE(output.contains("ch4-quiet")) << output.toStdString();
        }

        // Its announcement ends with it.
        sim.terminate();
        EXPECT_TRUE(sim.waitForFinished(kTimeoutMs));
        EXPECT_EQ(sim.exitCode(), 0);
        EXPECT_TRUE(Removed(browser, row.name, row.type));
        EXPECT_TRUE(browser.errors.empty()) << browser.errors.front();
    }
    quiet.terminate();
    EXPECT_TRUE(quiet.waitForFinished(kTimeoutMs));
}

}  // namespace
