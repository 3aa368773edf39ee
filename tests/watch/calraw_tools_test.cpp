// The calibration and raw capture windows of a Dravik and a Halden, against real simulated
// instruments.

#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <cmath>
#include <fstream>

#include "libskarn/dochalden.h"
#include "sim/raw_capture.h"
#include "tests/service/wire.h"
#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/rawdatadialog.h"
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
        click_in_group(cal, "CO2A", "Zero");
        EXPECT_TRUE(rows_become(tree, rows)) << rows;
        // The history tells its records apart by the second.
        const double next = std::floor(link.VarNumeric("cal-head:DATA:TIME")) + 1;
        EXPECT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric("cal-head:DATA:TIME") >= next; }, TIMEOUT_MS));
    }
    AnswerNextMessageBox("Clear");
    find_button(*cal, "Clear Old History...")->click();
    EXPECT_TRUE(rows_become(tree, 1));
    click_in_group(cal, "CO2B", "Zero");  // the instrument kept only the newest: one more makes two
    EXPECT_TRUE(rows_become(tree, 2));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: cal-head");
    delete window.data();
}

TEST(WatchCalibration, HaldenZeroAddsAHistoryRowAndRawCaptureOpens)
{
    SimProcess sim({"--model", "halden", "--name", "cal-fluor"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchHaldenDialog> window = new WatchHaldenDialog(nullptr, "cal-fluor", "halden");
    window->Connect("127.0.0.1", 0, sim.port);
    window->show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->GetConnector().VarNumeric("cal-fluor:DATA:TIME") > 0; },
                                TIMEOUT_MS));
    find_button(*window, "Cal...")->click();
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: cal-fluor");
    click_in_group(cal, "DC0", "Zero");
    EXPECT_TRUE(rows_become(cal->findChild<QTreeWidget*>(), 1));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: cal-fluor");
    find_button(*window, "Raw Capture...")->click();
    shown_dialog(*window, "Raw Data Capture: cal-fluor");
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

TEST(RawCaptureFromSim, ArrivesByteForByte)
{
    SimProcess sim({"--model", "halden", "--name", "rawsim"});
    ASSERT_TRUE(sim.WaitListening());
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
