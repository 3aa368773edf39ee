// A layout of two simulated instruments, one that is gone, and three charts, opened as the user
// opens a file, and saved again as it came.

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "app/myframe.h"
#include "app/mymainwindow.h"
#include "tests/service/wire.h"
#include "tests/sim/sim_process.h"
#include "watch/plotdialog.h"
#include "watch/watchdialog.h"

namespace {

bool write_file(const QString& path, const std::string& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.data(), qint64(text.size())) == qint64(text.size());
}

TEST(Layout, OpensWindowsAndChartsOfTwoInstrumentsAndOneGoneAndSavesThemAgain)
{
    SimProcess tolvan({"--model", "tolvan", "--name", "lay-tolvan"});
    SimProcess dravik({"--model", "dravik", "--name", "lay-dravik"});
    ASSERT_TRUE(tolvan.WaitListening() && dravik.WaitListening());
    QStringList failures;
    Connector::SetMessageBox([&](QWidget*, const QString& title, const QString&) { failures << title; });

    WindowLayout layout;
    layout.windows = {
        {"lay-tolvan", "tolvan", "127.0.0.1", tolvan.port, {40, 50, 900, 700},
         {{"Tolvan Data", 300, {60, 70, 900, 700}, {{"lay-tolvan:DATA:CH4", false}, {"lay-dravik:DATA:CO2A", true}}},
          {"Tolvan Data", 10, {80, 90, 900, 700}, {{"lay-tolvan:DATA:TEMP", false}}}}},
        {"lay-dravik", "dravik", "127.0.0.1", dravik.port, {100, 110, 900, 700},
         {{"Dravik Data", 60, {120, 130, 900, 700}, {{"lay-dravik:DATA:FLOW", false}}}}},
        {"lay-gone", "quenta", "127.0.0.1", free_port(), {140, 150, 900, 700}, {}},
    };
    QTemporaryDir directory;
    const QString good = directory.filePath("day.json"), bad = directory.filePath("bad.json");
    ASSERT_TRUE(write_file(good, layout.Write()) && write_file(bad, "{\"windows\": [{\"name\": \"x\"}]}"));

    MyMainWindow window("Arvex Sondar", "/opt/arvex/sondar");
    window.show();
    auto* frame = qobject_cast<MyFrame*>(window.centralWidget());
    AnswerNextMessageBox("OK");
    EXPECT_FALSE(window.OpenLayoutFile(bad));
    EXPECT_TRUE(frame->findChildren<QDialog*>().isEmpty());

    ASSERT_TRUE(window.OpenLayoutFile(good));
    const auto watches = frame->findChildren<WatchDialog*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(watches.size(), 3);
    EXPECT_EQ(watches[2]->windowTitle().toStdString().find("Watching Quenta: lay-gone"), 0u);
    std::vector<PlotDialog*> charts;
    for (WatchDialog* watch : watches)
        for (PlotDialog* chart : watch->findChildren<PlotDialog*>())
            charts.push_back(chart);
    ASSERT_EQ(charts.size(), 3u);
    // Every variable of every chart fills from its own simulator.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        for (PlotDialog* chart : charts)
            for (const auto& variable : chart->Variables())
                if (variable->values.empty())
                    return false;
        return true;
    }, TIMEOUT_MS));
    EXPECT_EQ(charts[0]->Variables().size(), 2u);
    EXPECT_GT(charts[0]->Variables()[1]->values.back(), 0);  // lay-dravik's CO2A
    EXPECT_TRUE(QTest::qWaitFor([&] { return !failures.isEmpty(); }, TIMEOUT_MS));
    EXPECT_EQ(failures, QStringList({"Connect To Instrument"}));
    EXPECT_FALSE(watches[2]->GetConnector().IsConnected());

    EXPECT_EQ(frame->CurrentLayout(), layout) << frame->CurrentLayout().Write();
    Connector::SetMessageBox(nullptr);
}

}  // namespace
