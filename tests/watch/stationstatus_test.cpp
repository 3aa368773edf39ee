// The station status against real simulators.

#include "tests/sim/sim_process.h"
#include "watch/stationstatusdialog.h"
#include "watch_test_util.h"

namespace {

using Status = StationStatusDialog;

// Killed, the simulator's row reads "disconnected" as soon as the link hears of it. With
// "Reconnect automatically" off, a simulator back on the same port is left alone until "Reconnect"
// is pressed; with it on, the link comes back by itself. Each return is marked in the log file.
TEST(StationStatus, LostLinksShowAtOnceAndComeBackByHandOrByThemselves)
{
    Connector::SetMessageBox([](QWidget*, const QString&, const QString&) { FAIL() << "a message box"; });
    const QStringList arguments{"--model", "tolvan", "--name", "status", "--rate", "10"};
    auto sim = std::make_unique<SimProcess>(arguments);
    ASSERT_TRUE(sim->WaitListening());
    const int port = sim->port;
    QTemporaryDir dir;
    auto connector = Connector::Factory(nullptr, test_host(), "tolvan");
    connector->SetLogFileName(dir.filePath("status.txt").toStdString());
    connector->StartLoggingToFile();
    QSignalSpy connected(connector.get(), &Connector::Connected), disconnected(connector.get(), &Connector::Disconnected);
    Heard heard;
    connector->RegisterListener("DATA", &heard);
    connector->Connect("127.0.0.1", 0, port);
    ASSERT_TRUE(connected.wait(TIMEOUT_MS) && heard.WaitForData(1));
    Status dialog;
    auto* table = dialog.findChild<QTableWidget*>();
    // Connectors of other tests may stand in the registry too.
    const auto row = [&] { return table->findItems(test_host().c_str(), Qt::MatchExactly).at(0)->row(); };
    const auto cell = [&](int column) { return table->item(row(), column)->text().toStdString(); };
    const auto reconnect = [&] { return qobject_cast<QPushButton*>(table->cellWidget(row(), Status::RECONNECT)); };
    EXPECT_EQ(cell(Status::MODEL) + "|" + cell(Status::ADDRESS) + "|" + cell(Status::STATE),
              "tolvan|127.0.0.1:" + std::to_string(port) + "|connected");
    EXPECT_FALSE(reconnect()->isEnabled());
    sim.reset();
    ASSERT_TRUE(disconnected.wait(TIMEOUT_MS));
    EXPECT_EQ(cell(Status::STATE).rfind("disconnected since ", 0), 0u) << cell(Status::STATE);
    EXPECT_TRUE(reconnect()->isEnabled());
    // Off: while the window refreshes three times nobody dials, until the button is pressed.
    sim = std::make_unique<SimProcess>(arguments, port);
    ASSERT_TRUE(sim->WaitListening());
    std::string age = cell(Status::AGE);
    int refreshes = 0;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return (refreshes += age != cell(Status::AGE) && (age = cell(Status::AGE), true)) == 3; }, TIMEOUT_MS));
    EXPECT_TRUE(connector->IsIdle() && !sim->Log().contains(" connected"));
    reconnect()->click();
    ASSERT_TRUE(connected.wait(TIMEOUT_MS) && heard.WaitForData(1));
    // On: a lost link is redialed at the back-off's pace until the simulator is back.
    dialog.findChild<QCheckBox*>()->setChecked(true);
    sim.reset();
    ASSERT_TRUE(disconnected.wait(TIMEOUT_MS));
    ASSERT_TRUE(QTest::qWaitFor([&] { return cell(Status::STATE).rfind("reconnecting in ", 0) == 0; }, TIMEOUT_MS));
    sim = std::make_unique<SimProcess>(arguments, port);
    ASSERT_TRUE(connected.wait(TIMEOUT_MS) && heard.WaitForData(1));
    EXPECT_EQ(cell(Status::STATE), "connected");
    connector->StopLoggingToFile();
    connector->UnRegisterListener(&heard);
    Connector::SetMessageBox(nullptr);
    std::string shape = "log:";  // data, a gap, data, a gap, data
    for (const std::string& line : split_lines(read_file(connector->LogFileName())))
        if (const char mark = !line.rfind("DATA\t", 0) ? 'D' : !line.rfind("DATAEVENT\tLINKGAP\t", 0) ? 'G' : 0)
            shape += mark == shape.back() ? "" : std::string(1, mark);
    EXPECT_EQ(shape, "log:DGDGD");
}

}  // namespace
