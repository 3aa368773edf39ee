// The tool windows of the watch windows, against real simulated instruments.

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPointer>
#include <QTemporaryDir>

#include <cmath>
#include <map>

#include "libskarn/dochalden.h"
#include "sim/raw_capture.h"
#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/rawdatadialog.h"
#include "watch/watchdravikdialog.h"
#include "watch/watchhaldendialog.h"
#include "watch/watchtolvandialog.h"

namespace {

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

bool rows_become(QTreeWidget* tree, int rows)
{
    return QTest::qWaitFor([&] { return tree->topLevelItemCount() == rows; }, TIMEOUT_MS);
}

TEST(WatchCalibration, DravikZerosAddHistoryRowsAndOldOnesClearOnTheInstrument)
{
    SimProcess sim({"--model", "dravik", "--name", "cal-head"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchDravikDialog> window = new WatchDravikDialog(nullptr, "cal-head", "dravik");
    window->Connect("127.0.0.1", 0, sim.port);
    window->show();
    Connector& link = window->GetConnector();
    ASSERT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric("cal-head:DATA:TIME") > 0; }, TIMEOUT_MS));
    find_button(*window, "Cal...")->click();
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: cal-head");
    auto* tree = cal->findChild<QTreeWidget*>();
    for (int rows = 1; rows <= 2; ++rows) {
        Click(group(cal, "CO2A"), "Zero");
        EXPECT_TRUE(rows_become(tree, rows)) << rows;
        // The history tells its records apart by the second.
        const double next = std::floor(link.VarNumeric("cal-head:DATA:TIME")) + 1;
        EXPECT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric("cal-head:DATA:TIME") >= next; }, TIMEOUT_MS));
    }
    AnswerNextMessageBox("Clear");
    find_button(*cal, "Clear Old History...")->click();
    EXPECT_TRUE(rows_become(tree, 1));
    Click(group(cal, "CO2B"), "Zero");  // the instrument kept only the newest: one more makes two
    EXPECT_TRUE(rows_become(tree, 2));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: cal-head");
    delete window.data();
}

// Where the file first differs from the simulator's bytes; -1 when equal in length and content.
int64_t first_difference(const std::string& path, int64_t size)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<char> chunk(1 << 16);
    int64_t at = 0;
    while (in) {
        in.read(chunk.data(), std::streamsize(chunk.size()));
        for (std::streamsize i = 0; i < in.gcount(); ++i, ++at)
            if (at >= size || chunk[size_t(i)] != char(SimRawCapture::Byte(at)))
                return at;
    }
    return at == size ? -1 : at;
}

TEST(HaldenFromSim, ZeroAddsAHistoryRowAndRawCapturesArriveByteForByte)
{
    SimProcess sim({"--model", "halden", "--name", "cal-fluor"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchHaldenDialog> window = new WatchHaldenDialog(nullptr, "cal-fluor", "halden");
    window->Connect("127.0.0.1", 0, sim.port);
    window->show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->GetConnector().VarNumeric("cal-fluor:DATA:TIME") > 0; }, TIMEOUT_MS));
    find_button(*window, "Cal...")->click();
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: cal-fluor");
    Click(group(cal, "DC0"), "Zero");
    EXPECT_TRUE(rows_become(cal->findChild<QTreeWidget*>(), 1));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: cal-fluor");
    find_button(*window, "Raw Capture...")->click();
    shown_dialog(*window, "Raw Data Capture: cal-fluor");
    delete window.data();

    QTemporaryDir dir;
    const QString path = dir.filePath("raw.dat");
    for (int64_t size : {int64_t(1), int64_t(100000), int64_t(20000000)}) {
        // A link of its own for each: settings sent within the link's send period would go late.
        const std::string host = "rawsim" + std::to_string(size);
        auto connector = Connector::Factory(nullptr, host, "halden");
        connector->Connect("127.0.0.1", 0, sim.port);
        ASSERT_TRUE(QTest::qWaitFor([&] { return connector->Doc_Halden().Conf().Ver().get() != ""; }, TIMEOUT_MS));
        RawDataDialog dialog(nullptr, host, &connector->Doc_Halden().Conf().Cfg().Rawdatacapture());
        QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, connector.get(), &Connector::OnSendXMLChanges);
        QObject::connect(&dialog, &RawDataDialog::SendRawXML, connector.get(), &Connector::OnSendRawXML);
        dialog.findChildren<QLineEdit*>()[0]->setText(QString::number(size));
        dialog.findChildren<QLineEdit*>()[1]->setText(path);
        QPushButton* capture = find_button(dialog, "Capture");
        capture->click();
        ASSERT_FALSE(capture->isEnabled());
        EXPECT_TRUE(QTest::qWaitFor([&] { return capture->isEnabled(); }, 20 * TIMEOUT_MS)) << size;
        EXPECT_EQ(first_difference(path.toStdString(), size), -1) << size;
        connector->Disconnect();
    }
    EXPECT_FALSE(sim.Log().contains("dropped")) << sim.Log().toStdString();
}

}  // namespace
