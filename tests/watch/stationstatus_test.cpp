// The station status against real simulators: a lost link shows at once, and comes back by hand
// or by itself, with the gap marked in its log.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>

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
    int boxes = 0;
    Connector::SetMessageBox([&](QWidget*, const QString&, const QString&) { ++boxes; });
    const QStringList arguments{"--model", "tolvan", "--name", "status", "--rate", "10"};
    auto sim = std::make_unique<SimProcess>(arguments);
    ASSERT_TRUE(sim->WaitListening());
    const int port = sim->port;
    QTemporaryDir dir;
    const std::string log_file = dir.filePath("status.txt").toStdString();
    auto connector = Connector::Factory(nullptr, test_host(), "tolvan");
    connector->SetLogFileName(log_file);
    connector->StartLoggingToFile();
    QSignalSpy connected(connector.get(), &Connector::Connected);
    QSignalSpy disconnected(connector.get(), &Connector::Disconnected);
    Heard heard;
    connector->RegisterListener("DATA", &heard);
    connector->Connect("127.0.0.1", 0, port);
    ASSERT_TRUE(connected.wait(TIMEOUT_MS));
    ASSERT_TRUE(heard.WaitForData(1));

    Status dialog;
    auto* table = dialog.findChild<QTableWidget*>();
    // Connectors of other tests may stand in the registry too.
    const auto row = [&] {
        return table->findItems(QString::fromStdString(test_host()), Qt::MatchExactly).at(0)->row();
    };
    const auto cell = [&](int column) { return table->item(row(), column)->text().toStdString(); };
    const auto reconnect = [&] { return qobject_cast<QPushButton*>(table->cellWidget(row(), Status::RECONNECT)); };
    EXPECT_EQ(cell(Status::NAME) + "|" + cell(Status::MODEL) + "|" + cell(Status::ADDRESS) + "|" +
                  cell(Status::STATE),
              test_host() + "|tolvan|127.0.0.1:" + std::to_string(port) + "|connected");
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
    ASSERT_TRUE(QTest::qWaitFor([&] {
        refreshes += cell(Status::AGE) != age;
        age = cell(Status::AGE);
        return refreshes == 3;
    }, TIMEOUT_MS));
    EXPECT_TRUE(connector->IsIdle());
    EXPECT_FALSE(sim->Log().contains(" connected"));
    reconnect()->click();
    ASSERT_TRUE(connected.wait(TIMEOUT_MS));
    ASSERT_TRUE(heard.WaitForData(1));

    // On: a lost link is redialed at the back-off's pace until the simulator is back.
    dialog.findChild<QCheckBox*>()->setChecked(true);
    sim.reset();
    ASSERT_TRUE(disconnected.wait(TIMEOUT_MS));
    ASSERT_TRUE(QTest::qWaitFor([&] { return cell(Status::STATE).rfind("reconnecting in ", 0) == 0; }, TIMEOUT_MS))
        << cell(Status::STATE);
    sim = std::make_unique<SimProcess>(arguments, port);
    ASSERT_TRUE(sim->WaitListening());
    ASSERT_TRUE(connected.wait(TIMEOUT_MS));
    ASSERT_TRUE(heard.WaitForData(1));
    EXPECT_EQ(cell(Status::STATE), "connected");
    connector->StopLoggingToFile();
    connector->UnRegisterListener(&heard);

    // Both gaps are in the log, each followed by data again.
    std::vector<size_t> gaps, data;
    const std::vector<std::string> lines = split_lines(read_file(log_file));
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].rfind("DATAEVENT\tLINKGAP\tlink down from ", 0) == 0)
            gaps.push_back(i);
        if (lines[i].rfind("DATA\t", 0) == 0)
            data.push_back(i);
    }
    ASSERT_EQ(gaps.size(), 2u);
    EXPECT_LT(data.front(), gaps[0]);
    EXPECT_GT(data.back(), gaps[1]);
    EXPECT_TRUE(std::any_of(data.begin(), data.end(), [&](size_t i) { return i > gaps[0] && i < gaps[1]; }));
    EXPECT_EQ(boxes, 0);
    Connector::SetMessageBox(nullptr);
}

}  // namespace
