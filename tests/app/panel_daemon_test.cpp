// The real panel and discovery against a real avahi-daemon, only inside mdns_sandbox.sh.

#include <gtest/gtest.h>

#include <QProcess>
#include <QTcpSocket>
#include <QTest>
#include <QTreeWidget>

#include "app/myframe.h"
#include "app/mymainwindow.h"
#include "discovery/bonjourclient.h"
#include "tests/app/app_test_util.h"
#include "tests/discovery/discovery_test_util.h"

namespace {

constexpr int kTimeoutMs = 20000;

TEST(PanelWithDaemon, AnnouncedSimulatorIsListedWithModelAndVersion)
{
    if (qEnvironmentVariableIsEmpty("SONDAR_MDNS_SANDBOX"))
        GTEST_SKIP() << "needs the private daemon: run through tests/discovery/mdns_sandbox.sh";
    // Multicast DNS must not reach a real network: refuse to run beside anything but lo.
    ASSERT_EQ(InterfaceNames(), std::vector<std::string>{"lo"});

    // A simulated Tolvan on loopback, at its usual port: the namespace has that port to itself.
    QProcess sim;
    sim.start(SONDAR_SIM, {"--model", "tolvan", "--name", "sim-tolvan"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return sim.readAllStandardOutput().contains("listening on"); }, kTimeoutMs));

    RecordingListener announcer;
    BonjourClient registration(&announcer);
    registration.Register("sim-tolvan", "_arvex-tolvan._tcp", "", 4410,
                          {{"model", "Tolvan"}, {"ver", "2.1.0"}, {"company", "Arvex"}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !announcer.registered.empty(); }, kTimeoutMs));
    EXPECT_TRUE(announcer.errors.empty()) << announcer.errors.front();

    DescriptionFile file("<config><title>Sandbox</title><services><service>_arvex-tolvan._tcp</service>"
                         "<service>_arvex-halden._tcp</service></services></config>");
    MyMainWindow window("Arvex Sondar", "/opt/arvex/sondar");
    window.show();
    EXPECT_EQ(window.windowTitle(), "Sandbox");
    auto* frame = qobject_cast<MyFrame*>(window.centralWidget());
    ASSERT_NE(frame, nullptr);
    auto* tree = frame->findChild<QTreeWidget*>();
    // Both addresses of the sandbox host (127.0.0.1, ::1) make one row, after "Other...".
    auto listed = [&] {
        return frame->Instruments().size() == 2 && frame->Instruments()[1].addresses.size() == 2;
    };
    ASSERT_TRUE(QTest::qWaitFor(listed, kTimeoutMs)) << [&] {
        std::string seen;
        for (const InstInfo& info : frame->Instruments())
            seen += info.name + " (" + std::to_string(info.addresses.size()) + " addresses) ";
        return seen;
    }();
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "Other...");
    const QTreeWidgetItem* row = tree->topLevelItem(1);
    EXPECT_EQ(row->text(0) + "|" + row->text(1) + "|" + row->text(2), "sim-tolvan|Tolvan|2.1.0");

    // The address the panel would dial reaches the simulator.
    const InstInfo& info = frame->Instruments()[1];
    EXPECT_EQ(info.type, "tolvan");
    int scope = 0, port = 0;
    const std::string address = info.SelectIPAddress(true, &scope, &port);
    EXPECT_EQ(address, "127.0.0.1");
    EXPECT_EQ(port, 4410);
    QTcpSocket socket;
    socket.connectToHost(QString::fromStdString(address), quint16(port));
    EXPECT_TRUE(socket.waitForConnected(kTimeoutMs)) << socket.errorString().toStdString();

    sim.terminate();
    EXPECT_TRUE(sim.waitForFinished(kTimeoutMs));
}

}  // namespace
