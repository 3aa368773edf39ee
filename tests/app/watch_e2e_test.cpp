// From the main window to a live chart: "Other..." opens a watch on a simulated Tolvan, which
// stays open while the instrument reboots and goes on when it is dialled again.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "tests/app/app_test_util.h"
#include "tests/sim/sim_process.h"
#include "watch/mytablewidget.h"
#include "watch/plotdialog.h"
#include "watch/watchtolvandialog.h"

namespace {

TEST(WatchEndToEnd, OtherRowOpensALiveWatchThatOutlivesAReboot)
{
    SimProcess sim({"--model", "tolvan", "--name", "e2e-tolvan", "--rate", "10"});
    ASSERT_TRUE(sim.WaitListening());
    std::vector<std::string> boxes;
    Connector::SetMessageBox([&](QWidget*, const QString& title, const QString& text) {
        boxes.push_back((title + ": " + text).toStdString());
    });
    QWidget window;
    auto* frame = new MyFrame(&window, "Arvex Sondar", "/opt/arvex/sondar");
    AnswerInputDialog([&](QInputDialog& dialog) {
        dialog.setTextValue("127.0.0.1:" + QString::number(sim.port));
        dialog.accept();
    });
    frame->OnOtherButtonClicked();
    auto* watch = frame->findChild<WatchTolvanDialog*>();
    ASSERT_TRUE(watch);
    EXPECT_EQ(watch->windowTitle(), "Watching Tolvan: 127.0.0.1: IP=127.0.0.1");

    // Row 5 of "DATASTAT" is the laser's temperature; "DATA" shows from the first "DATASTAT" after it.
    auto* table = watch->findChild<MyTableWidget*>();
    const auto filled = [&](int row, int column) {
        return table->item(row, column) && !table->item(row, column)->text().isEmpty();
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return filled(5, 3) && filled(0, 1); }, TIMEOUT_MS));
    EXPECT_EQ(table->item(5, 2)->text(), "LCTACTUAL");
    watch->OnCellDoubleClicked(5, 2);
    auto* plot = watch->findChild<PlotDialog*>();
    ASSERT_TRUE(plot);
    ASSERT_EQ(plot->Variables().size(), 1u);
    EXPECT_EQ(plot->Variables()[0]->text, "127.0.0.1:DATASTAT:LCTACTUAL");
    ASSERT_TRUE(QTest::qWaitFor([&] { return plot->Variables()[0]->values.size() >= 2; }, TIMEOUT_MS));
    EXPECT_GT(plot->Variables()[0]->values.back(), 0);

    // Row 1 of "DATA" is SECONDS, the instrument's clock.
    const auto seconds = [&] { return table->item(1, 1) ? table->item(1, 1)->text().toDouble() : 0.0; };
    ASSERT_TRUE(QTest::qWaitFor([&] { return seconds() > 1e9; }, TIMEOUT_MS));
    ASSERT_EQ(table->item(1, 0)->text(), "SECONDS");
    Connector& link = watch->GetConnector();
    QSignalSpy disconnected(&link, &Connector::Disconnected);
    link.OnSendRawXML("<arvex><tolvan><cmd><reboot>true</reboot></cmd></tolvan></arvex>\n");
    ASSERT_TRUE(disconnected.wait(TIMEOUT_MS));
    ASSERT_TRUE(QTest::qWaitFor([&] { return sim.Log().contains("up again"); }, TIMEOUT_MS));
    const double before = seconds();
    watch->Connect("127.0.0.1", 0, sim.port);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seconds() > before; }, TIMEOUT_MS));
    EXPECT_EQ(table->item(1, 0)->text(), "SECONDS");
    EXPECT_TRUE(boxes.empty()) << boxes.front();
    Connector::SetMessageBox(nullptr);
}

}  // namespace
