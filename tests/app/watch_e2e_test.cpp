// From the main window to a live chart: "Other..." opens a watch on a simulated Tolvan.

#include <gtest/gtest.h>

#include <QTest>

#include "tests/app/app_test_util.h"
#include "tests/sim/sim_process.h"
#include "watch/mytablewidget.h"
#include "watch/plotdialog.h"
#include "watch/watchtolvandialog.h"

namespace {

TEST(WatchEndToEnd, OtherRowOpensALiveWatchOnASimulatedTolvan)
{
    SimProcess sim({"--model", "tolvan", "--name", "e2e-tolvan", "--rate", "10"});
    ASSERT_TRUE(sim.WaitListening());
    QWidget window;
    auto* frame = new MyFrame(&window, "Arvex Sondar", "/opt/arvex/sondar");
    const std::string address = "127.0.0.1:" + std::to_string(sim.port);
    AnswerInputDialog([&](QInputDialog& dialog) {
        dialog.setTextValue(QString::fromStdString(address));
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
}

}  // namespace
