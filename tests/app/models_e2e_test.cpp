// From the main panel's list to a live window, for every other model against its simulator.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTest>
#include <QTreeWidget>

#include "tests/app/app_test_util.h"
#include "tests/sim/sim_process.h"
#include "watch/configmorvikdialog.h"
#include "watch/mytablewidget.h"
#include "watch/watchmodeldialog.h"

namespace {

QStringList pair_labels(const QTableWidget& table)
{
    QStringList labels;
    for (int column = 0; column < table.columnCount(); column += 2)
        labels << table.horizontalHeaderItem(column)->text();
    return labels;
}

TEST(ModelsEndToEnd, EveryRowOpensItsWindowWithLiveValues)
{
    const struct {
        const char* model;
        const char* title;
        const char* announced;  ///< a record that the window learns of from the instrument, or ""
    } rows[] = {
        {"quenta", "Watching Quenta: ", "DATALT"},
        {"dravik", "Watching Dravik: ", "DATALT"},
        {"halden", "Watching Halden: ", ""},
        {"bremmel", "Watching Bremmel: ", ""},
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
        auto* tree = frame->findChild<QTreeWidget*>();
        auto rows_named = tree->findItems(QString::fromStdString(name), Qt::MatchExactly);
        ASSERT_EQ(rows_named.size(), 1);
        rows_named[0]->setSelected(true);
        frame->OnItemDoubleClicked(rows_named[0], 0);

        auto* window = frame->findChild<WatchModelDialog*>();
        ASSERT_TRUE(window) << row.model;
        EXPECT_EQ(window->windowTitle().toStdString(), row.title + name + ": IP=127.0.0.1");
        auto* table = window->findChild<MyTableWidget*>();
        // "DATA" and "DATASTAT" both fill.
        for (int column : {1, 3})
            EXPECT_TRUE(QTest::qWaitFor([&] { return table->item(0, column) && !table->item(0, column)->text().isEmpty(); },
                                        TIMEOUT_MS))
                << row.model << " column " << column;
        if (*row.announced)
            EXPECT_TRUE(QTest::qWaitFor([&] { return pair_labels(*table).contains(row.announced); }, TIMEOUT_MS))
                << row.model;
    }
}

TEST(ModelsEndToEnd, AMorvikRowOpensItsConfiguration)
{
    SimProcess sim({"--model", "morvik", "--name", "e2e-morvik"});
    ASSERT_TRUE(sim.WaitListening());
    QWidget main;
    auto* frame = new MyFrame(&main, "Arvex Sondar", "/opt/arvex/sondar");
    SocketAddress address("127.0.0.1");
    address.Port(sim.port);
    frame->AddService("e2e-morvik", "_arvex-morvik._tcp", "local.", 1, "e2e-morvik.local.", address,
                      {{"model", "Pelsen"}});
    auto* item = frame->findChild<QTreeWidget*>()->findItems("e2e-morvik", Qt::MatchExactly).at(0);
    item->setSelected(true);
    frame->OnItemDoubleClicked(item, 0);
    auto* window = frame->findChild<ConfigMorvikDialog*>();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->windowTitle(), "Configuring Pelsen: e2e-morvik: IP=127.0.0.1");
    auto link = Connector::LookupConnector("e2e-morvik");
    ASSERT_TRUE(link);
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->Doc_Morvik().Conf().Name().get() == "e2e-morvik"; }, TIMEOUT_MS));
}

}  // namespace
