// The panels against real simulated instruments on loopback: the stand-alone calibration panel,
// every model's row of the main panel, and a watch that outlives a reboot.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTreeWidget>

#include "app/mycalmainwindow.h"
#include "tests/app/app_test_util.h"
#include "tests/service/wire.h"
#include "tests/sim/sim_process.h"
#include "watch/configmorvikdialog.h"
#include "watch/mytablewidget.h"
#include "watch/plotdialog.h"
#include "watch/watchmodeldialog.h"
#include "watch/watchtolvandialog.h"

namespace {

QStringList types(QTreeWidget* tree)
{
    QStringList texts;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        texts << tree->topLevelItem(i)->text(1);
    return texts;
}

TEST(CalibrationPanel, ZeroSpanAndClearOldHistoryAgainstTheSimulator)
{
    SimProcess sim({"--model", "tolvan", "--name", "sim-tolvan"});
    ASSERT_TRUE(sim.WaitListening());
    auto* window = new MyCalMainWindow("", "sim-tolvan", "127.0.0.1", sim.port);
    window->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<MyCalMainWindow> alive(window);
    window->show();
    auto* tree = window->findChild<QTreeWidget*>();
    const auto connector = Connector::LookupConnector("sim-tolvan");
    ASSERT_TRUE(QTest::qWaitFor([&] { return connector->Doc_Tolvan().Conf().Name().get() == "sim-tolvan"; }, TIMEOUT_MS));
    const int before = tree->topLevelItemCount();

    for (const char* button : {"Zero", "Span", "Zero"}) {
        const int rows = tree->topLevelItemCount();
        Click(window, button);
        ASSERT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() > rows; }, TIMEOUT_MS)) << button;
    }
    EXPECT_EQ(types(tree).mid(before), QStringList({"CH4 Zero", "CH4 Span", "CH4 Zero"}));

    AnswerNextMessageBox("Clear");
    Click(window, "Clear Old History...");
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() == 2; }, TIMEOUT_MS));
    EXPECT_EQ(types(tree), QStringList({"CH4 Span", "CH4 Zero"}));
    // The simulator holds the same, asked over a link of its own.
    RawClient client;
    ASSERT_TRUE(client.Connect(sim.port));
    client.Send("<arvex><tolvan><cal><history>&query;</history></cal></tolvan></arvex>\n");
    const QString kept = QString::fromStdString(client.WaitForXML());
    EXPECT_EQ(kept.count("<record>"), 2) << kept.toStdString();
    EXPECT_EQ(kept.count("CH4 Zero"), 1) << kept.toStdString();

    Click(window, "Close");
    EXPECT_TRUE(QTest::qWaitFor([&] { return alive.isNull(); }, TIMEOUT_MS));
}

TEST(ModelsEndToEnd, EveryRowOpensItsWindowWithLiveValues)
{
    const struct {
        const char* model;
        const char* title;
        const char* announced;  ///< a record that the window learns of from the instrument, or ""
    } rows[] = {
        {"quenta", "Watching Quenta: ", "DATALT"}, {"dravik", "Watching Dravik: ", "DATALT"},
        {"halden", "Watching Halden: ", ""},       {"bremmel", "Watching Bremmel: ", ""},
        {"morvik", "Configuring Pelsen: ", ""},
    };
    for (const auto& row : rows) {
        const std::string name = std::string("e2e-") + row.model;
        SimProcess sim({"--model", row.model, "--name", QString::fromStdString(name)});
        ASSERT_TRUE(sim.WaitListening()) << row.model;
        QWidget main;
        auto* frame = new MyFrame(&main, "Arvex Sondar", "/opt/arvex/sondar");
        SocketAddress address("127.0.0.1");
        address.Port(sim.port);
        frame->AddService(name, std::string("_arvex-") + row.model + "._tcp", "local.", 1, name + ".local.", address,
                          {{"model", row.model}});
        QTreeWidgetItem* item = frame->findChild<QTreeWidget*>()->findItems(QString::fromStdString(name), Qt::MatchExactly).at(0);
        item->setSelected(true);
        frame->OnItemDoubleClicked(item, 0);

        auto* window = frame->findChild<QDialog*>();
        ASSERT_TRUE(window) << row.model;
        EXPECT_EQ(window->windowTitle().toStdString(), row.title + name + ": IP=127.0.0.1");
        if (qobject_cast<ConfigMorvikDialog*>(window)) {
            auto link = Connector::LookupConnector(name);
            EXPECT_TRUE(QTest::qWaitFor([&] { return link->Doc_Morvik().Conf().Name().get() == name; }, TIMEOUT_MS));
            continue;
        }
        auto* table = window->findChild<MyTableWidget*>();
        for (int column : {1, 3})  // "DATA" and "DATASTAT"
            EXPECT_TRUE(QTest::qWaitFor([&] { return !cell(*table, 0, column).isEmpty(); }, TIMEOUT_MS)) << row.model << column;
        if (*row.announced) {
            EXPECT_TRUE(QTest::qWaitFor([&] {
                for (int column = 0; column < table->columnCount(); column += 2)
                    if (table->horizontalHeaderItem(column)->text() == row.announced)
                        return true;
                return false;
            }, TIMEOUT_MS)) << row.model;
        }
    }
}

// "Other..." opens a watch on a simulated Tolvan, which stays open while the instrument reboots and
// goes on when it is dialled again.
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return !cell(*table, 5, 3).isEmpty() && !cell(*table, 0, 1).isEmpty(); }, TIMEOUT_MS));
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
