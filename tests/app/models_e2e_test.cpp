// From the main panel's list to a live window, for every other model against its simulator.

#include <gtest/gtest.h>

#include <QTest>
#include <QTreeWidget>

#include "tests/app/app_test_util.h"
#include "tests/sim/sim_process.h"
#include "watch/configmorvikdialog.h"
#include "watch/mytablewidget.h"
#include "watch/watchmodeldialog.h"

namespace {

bool filled(const QTableWidget& table, int row, int column)
{
    return table.item(row, column) && !table.item(row, column)->text().isEmpty();
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
            EXPECT_TRUE(QTest::qWaitFor([&] { return filled(*table, 0, column); }, TIMEOUT_MS)) << row.model << column;
        if (*row.announced)
            EXPECT_TRUE(QTest::qWaitFor([&] {
                for (int column = 0; column < table->columnCount(); column += 2)
                    if (table->horizontalHeaderItem(column)->text() == row.announced)
                        return true;
                return false;
            }, TIMEOUT_MS)) << row.model;
    }
}

}  // namespace
