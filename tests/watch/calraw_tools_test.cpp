// The calibration and raw capture windows of a Dravik's and a Halden's watch windows, against
// real simulated instruments.

#include <QGroupBox>
#include <QPointer>
#include <QTreeWidget>

#include <cmath>

#include "tests/service/wire.h"
#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/watchdravikdialog.h"
#include "watch/watchhaldendialog.h"

namespace {

QDialog* shown_dialog(const QWidget& window, const QString& title)
{
    for (QDialog* dialog : window.findChildren<QDialog*>())
        if (dialog->windowTitle() == title && dialog->isVisible())
            return dialog;
    ADD_FAILURE() << "no window " << title.toStdString();
    return nullptr;
}

void click_in_group(QWidget* dialog, const QString& title, const QString& button)
{
    for (QGroupBox* group : dialog->findChildren<QGroupBox*>())
        if (group->title() == title)
            find_button(*group, button)->click();
}

template <class Window>
struct Watched {
    Watched(const char* model, const char* name) : sim({"--model", model, "--name", name}), host(name)
    {
        EXPECT_TRUE(sim.WaitListening());
        window = new Window(nullptr, name, model);
        window->Connect("127.0.0.1", 0, sim.port);
        window->show();
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->GetConnector().VarNumeric(host + ":DATA:TIME") > 0; },
                                    TIMEOUT_MS));
    }
    ~Watched() { delete window.data(); }
    /// Waits until the instrument's clock shows a later second: it tells history records apart by time.
    void NextSecond()
    {
        const double after = std::floor(window->GetConnector().VarNumeric(host + ":DATA:TIME")) + 1;
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->GetConnector().VarNumeric(host + ":DATA:TIME") >= after; },
                                    TIMEOUT_MS));
    }

    SimProcess sim;
    std::string host;
    QPointer<Window> window;
};

TEST(WatchCalibration, DravikZerosAddHistoryRowsAndOldOnesClearOnTheInstrument)
{
    Watched<WatchDravikDialog> watched("dravik", "cal-head");
    find_button(*watched.window, "Cal...")->click();
    QDialog* cal = shown_dialog(*watched.window, "Calibration Control Panel: cal-head");
    auto* tree = cal->findChild<QTreeWidget*>();
    for (int rows = 1; rows <= 2; ++rows) {
        click_in_group(cal, "CO2A", "Zero");
        EXPECT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() == rows; }, TIMEOUT_MS)) << rows;
        watched.NextSecond();
    }
    AnswerNextMessageBox("Clear");
    find_button(*cal, "Clear Old History...")->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() == 1; }, TIMEOUT_MS));
    // The instrument has only the newest left: one more zero makes two.
    click_in_group(cal, "CO2B", "Zero");
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() == 2; }, TIMEOUT_MS));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*watched.window, "Advanced Calibration: cal-head");
}

TEST(WatchCalibration, HaldenZeroAddsAHistoryRowAndRawCaptureOpens)
{
    Watched<WatchHaldenDialog> watched("halden", "cal-fluor");
    find_button(*watched.window, "Cal...")->click();
    QDialog* cal = shown_dialog(*watched.window, "Calibration Control Panel: cal-fluor");
    click_in_group(cal, "DC0", "Zero");
    auto* tree = cal->findChild<QTreeWidget*>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree->topLevelItemCount() == 1; }, TIMEOUT_MS));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*watched.window, "Advanced Calibration: cal-fluor");
    find_button(*watched.window, "Raw Capture...")->click();
    shown_dialog(*watched.window, "Raw Data Capture: cal-fluor");
}

}  // namespace
