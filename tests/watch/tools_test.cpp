// The tool windows of a Tolvan's watch window, against a real simulated Tolvan.

#include "watch/watchtolvandialog.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QPointer>

#include <map>

#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"

namespace {

QDialog* shown_dialog(const QWidget& window, const QString& title)
{
    QDialog* found = nullptr;
    for (QDialog* dialog : window.findChildren<QDialog*>())
        if (dialog->windowTitle() == title) {
            EXPECT_EQ(found, nullptr) << "two windows " << title.toStdString();
            found = dialog;
        }
    EXPECT_TRUE(found && found->isVisible()) << title.toStdString();
    return found;
}

TEST(WatchTools, EveryToolButtonOpensItsOneWorkingWindow)
{
    SimProcess sim({"--model", "tolvan", "--name", "tools-sim"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchTolvanDialog> window = new WatchTolvanDialog(nullptr, "tools-sim", "tolvan");
    window->Connect("127.0.0.1", 0, sim.port);
    window->show();
    Connector& connector = window->GetConnector();
    ASSERT_TRUE(QTest::qWaitFor([&] { return connector.Doc_Tolvan().Conf().Name().get() == "tools-sim"; }, TIMEOUT_MS));

    const std::pair<const char*, const char*> tools[] = {
        {"Laser Temp...", "Laser Temperature Control: "}, {"Cal...", "Calibration Control Panel: "},
        {"Factory...", "Factory Settings: "},             {"Mirrors...", "Mirror Control Panel: "},
        {"Clock...", "Clock: "},                          {"Network...", "Network Settings: "},
        {"Rate...", "Output Rate: "}};
    for (const auto& [button, title] : tools) {
        find_button(*window, button)->click();
        QDialog* first = shown_dialog(*window, QString(title) + "tools-sim");
        first->close();
        find_button(*window, button)->click();  // the same window again
        EXPECT_EQ(shown_dialog(*window, QString(title) + "tools-sim"), first);
    }
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: tools-sim");
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: tools-sim");

    // The laser follows a set point given in its window: the instrument reports the new target.
    QDialog* temp = shown_dialog(*window, "Laser Temperature Control: tools-sim");
    for (QGroupBox* group : temp->findChildren<QGroupBox*>())
        if (group->title() == "Cooler Temperature Control")
            group->findChild<QDoubleSpinBox*>()->setValue(31.25);
    EXPECT_TRUE(QTest::qWaitFor([&] { return connector.VarNumeric("tools-sim:DATASTAT:LCTSET") == 31.25; }, TIMEOUT_MS));

    // 10 Hz in the rate window: ten DATA records in every whole second of the instrument's clock
    // (field SECONDS) after the change; the first and the last second seen may be cut short.
    RawClient counter;
    ASSERT_TRUE(counter.Connect(sim.port));
    auto* rates = shown_dialog(*window, "Output Rate: tools-sim")->findChild<QComboBox*>();
    rates->setCurrentIndex(rates->findText("10 Hz"));
    counter.WaitFor([](const std::string& line) { return line.find("<rate>10</rate>") != std::string::npos; });
    std::map<long long, int> per_second;
    counter.WaitFor([&](const std::string& line) {
        if (line.rfind("DATA\t", 0) == 0)
            ++per_second[QString::fromStdString(line).split('\t')[2].toLongLong()];
        return per_second.size() >= 4;
    });
    ASSERT_EQ(per_second.size(), 4u);
    EXPECT_EQ(std::next(per_second.begin(), 1)->second, 10);
    EXPECT_EQ(std::next(per_second.begin(), 2)->second, 10);

    window->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, TIMEOUT_MS));
}

}  // namespace
