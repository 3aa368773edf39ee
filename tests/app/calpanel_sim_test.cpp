// The stand-alone calibration panel against a real simulated Tolvan.

#include "app/mycalmainwindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>

#include "link/connector.h"
#include "tests/sim/sim_process.h"

namespace {

QStringList types(QTreeWidget* tree)
{
    QStringList texts;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        texts << tree->topLevelItem(i)->text(1);
    return texts;
}

void click(QWidget* parent, const QString& label)
{
    for (QPushButton* button : parent->findChildren<QPushButton*>())
        if (button->text() == label)
            return button->click();
    ADD_FAILURE() << "no button " << label.toStdString();
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
        click(window, button);
        ASSERT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() > rows; }, TIMEOUT_MS)) << button;
    }
    EXPECT_EQ(types(tree).mid(before), QStringList({"CH4 Zero", "CH4 Span", "CH4 Zero"}));

    QTimer::singleShot(0, [] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        for (QAbstractButton* button : box ? box->buttons() : QList<QAbstractButton*>())
            if (button->text() == "Clear")
                button->click();
    });
    click(window, "Clear Old History...");
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() == 2; }, TIMEOUT_MS));
    EXPECT_EQ(types(tree), QStringList({"CH4 Span", "CH4 Zero"}));
    // The simulator holds the same, asked over a link of its own.
    RawClient client;
    ASSERT_TRUE(client.Connect(sim.port));
    client.Send("<arvex><tolvan><cal><history>&query;</history></cal></tolvan></arvex>\n");
    const QString kept = QString::fromStdString(client.WaitForXML());
    EXPECT_EQ(kept.count("<record>"), 2) << kept.toStdString();
    EXPECT_EQ(kept.count("CH4 Zero"), 1) << kept.toStdString();

    click(window, "Close");
    EXPECT_TRUE(QTest::qWaitFor([&] { return alive.isNull(); }, TIMEOUT_MS));
}

}  // namespace
