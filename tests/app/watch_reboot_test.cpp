// A watch window stays open while its instrument reboots, and goes on when it is dialled again.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "tests/app/app_test_util.h"
#include "tests/sim/sim_process.h"
#include "watch/mytablewidget.h"
#include "watch/watchtolvandialog.h"

namespace {

TEST(WatchReboot, AnOpenWatchGoesOnAfterTheInstrumentRebootsAndIsDialledAgain)
{
    SimProcess sim({"--model", "tolvan", "--name", "phoenix-watch", "--rate", "10"});
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
    auto* table = watch->findChild<MyTableWidget*>();
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
