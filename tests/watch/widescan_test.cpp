#include <gtest/gtest.h>

#include <QClipboard>
#include <QPrintDialog>
#include <QPrinter>
#include <QTableView>
#include <QTemporaryDir>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/watchtolvandialog.h"
#include "watch/widetolvandialog.h"

namespace {

std::vector<double> set_points(const std::vector<std::string>& sent)
{
    std::vector<double> points;
    for (const std::string& text : sent)
        points.push_back(std::stod(text.substr(text.find("<temp>") + 6)));
    return points;
}

size_t points(const WideTolvanDialog& dialog, int curve)
{
    return static_cast<QwtPlotCurve*>(
               dialog.findChild<QwtPlot*>()->itemList(QwtPlotItem::Rtti_PlotCurve).at(curve))
        ->dataSize();
}

int rows(const WideTolvanDialog& dialog)
{
    return dialog.findChild<QTableView*>()->model()->rowCount();
}

std::string waveform(const char* record, int count)
{
    std::string line = std::string(record) + "\t2.0000";
    for (int i = 0; i < count; ++i)
        line += "\t" + std::to_string(i == 50 ? 1.0 : 0.01 * i);
    return with_sum(line + "\t");
}

std::string status(const std::string& temp)
{
    return with_sum("DATASTAT\t1000\t0\t0\t0\t2.000\t" + temp + "\t");
}

TEST(WideTolvanDialog, StepsByHand)
{
    const std::string host = test_host();
    auto link = Connector::Factory(nullptr, host, "tolvan");
    WideTolvanDialog dialog(nullptr, host, link->Doc_Tolvan(), host + ":DATAR:WAVEFORM", host + ":DATAS:WAVEFORM",
                            host + ":DATASTAT:LCTACTUAL");
    std::vector<std::string> sent;
    QObject::connect(&dialog, &WideTolvanDialog::SendRawXML, [&](std::string text) { sent.push_back(text); });
    const auto feed = [&](const std::vector<std::string>& lines) {
        for (const std::string& line : lines)
            link->HandleData(line);
    };
    feed({"DATASTATH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tLCTSET\tLCTACTUAL\tCHK\n"});
    dialog.SetStartLaserTemp();
    EXPECT_EQ(sent.at(0), "<arvex><tolvan><factory><delta1>100</delta1></factory><cfg><linelock><lasercooler>"
                          "<control>manual</control><temp>2</temp></lasercooler></linelock></cfg></tolvan></arvex>\n");

    // Idle, the label follows the laser and nothing is sent; the waveforms seen count all the same.
    const std::string sample = waveform("DATAS", 100);
    feed({sample, sample, sample, status("12.3456")});
    EXPECT_EQ(dialog.findChild<QLabel*>()->text(), "12.35 C");
    EXPECT_EQ(sent.size(), 1u);

    // 99 numbers don't count towards the settling; 101 are taken as the first 100.
    find_button(dialog, "Start")->click();
    feed({waveform("DATAS", 99), status("2.0")});
    EXPECT_EQ(set_points(sent), (std::vector<double>{2, 2, 2.25}));
    EXPECT_EQ(points(dialog, 0), 20u);
    EXPECT_EQ(points(dialog, 2), 0u);  // no reference yet
    const std::string longer = waveform("DATAS", 101), reference = waveform("DATAR", 101);
    feed({longer, longer, reference, reference, reference, waveform("DATAS", 99), status("2.25")});
    EXPECT_EQ(sent.size(), 3u);
    feed({sample, status("2.25")});
    EXPECT_EQ(points(dialog, 0), 40u);
    EXPECT_EQ(points(dialog, 2), 20u);

    // Stopped with two scans and no estimate: no curves, no rows, the laser back at 2 and no more steps.
    EXPECT_EQ(rows(dialog), 8);
    find_button(dialog, "Stop")->click();
    feed({sample, sample, sample, status("2.5")});
    EXPECT_EQ(rows(dialog), 0);
    EXPECT_EQ(points(dialog, 1), 0u);
    EXPECT_EQ(set_points(sent), (std::vector<double>{2, 2, 2.25, 2.5, 2}));
}

TEST(WideTolvanDialog, PrintDialogIsKept)
{
    QTemporaryDir dir;
    std::vector<QPrintDialog*> seen;
    WideTolvanDialog::SetPrintDialog([&](QPrintDialog& dialog) {
        seen.push_back(&dialog);
        if (seen.size() > 1)
            return int(QDialog::Rejected);
        dialog.printer()->setOutputFileName(dir.filePath("scan.pdf"));
        return int(QDialog::Accepted);
    });
    auto link = Connector::Factory(nullptr, test_host(), "tolvan");
    WideTolvanDialog dialog(nullptr, test_host(), link->Doc_Tolvan(), "", "", "");
    find_button(dialog, "Print...")->click();
    find_button(dialog, "Print...")->click();
    WideTolvanDialog::SetPrintDialog(nullptr);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[1]->printer()->outputFileName(), dir.filePath("scan.pdf"));
    EXPECT_EQ(seen[1]->printer()->pageLayout().orientation(), QPageLayout::Landscape);
    EXPECT_GT(QFileInfo(dir.filePath("scan.pdf")).size(), 0);
}

// (temperature, sample) of each tab-separated line.
std::vector<std::pair<double, double>> read_columns(std::istream&& in)
{
    std::vector<std::pair<double, double>> rows;
    double t, s, r;
    while (in >> t >> s >> r)
        rows.emplace_back(t, s);
    return rows;
}

// The instrument runs three times as fast: a step each third of a second, the sweep about a
// minute. Five samples a second, each status record going out with one.
TEST(WideTolvanDialog, SweepReproducesTheSimulatedSpectrum)
{
    constexpr int SWEEP_MS = 300000;
    SimProcess sim({"--model", "tolvan", "--name", "widesweep", "--speed", "3", "--rate", "5"});
    ASSERT_TRUE(sim.WaitListening());
    std::unique_ptr<WatchTolvanDialog> window(new WatchTolvanDialog(nullptr, test_host(), "tolvan"));
    window->Connect("127.0.0.1", 0, sim.port);
    Connector& link = window->GetConnector();
    const std::string laser = test_host() + ":DATASTAT:LCTACTUAL";
    ASSERT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric(laser) != 0; }, TIMEOUT_MS));

    // Opened twice, one window; the first opening sends the laser to 2 °C.
    find_button(*window, "Wide Scan")->click();
    find_button(*window, "Wide Scan")->click();
    ASSERT_EQ(window->findChildren<WideTolvanDialog*>().size(), 1);
    WideTolvanDialog& dialog = *window->findChild<WideTolvanDialog*>();
    EXPECT_TRUE(dialog.isVisible());
    std::vector<std::string> sent;
    QObject::connect(&dialog, &WideTolvanDialog::SendRawXML, [&](std::string text) { sent.push_back(text); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::abs(link.VarNumeric(laser) - 2.0) < 0.001; }, SWEEP_MS));

    find_button(dialog, "Start")->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return sent.size() == 186; }, SWEEP_MS)) << sent.size();
    std::vector<double> expected;
    for (int k = 0; k <= 184; ++k)
        expected.push_back(2 + 0.25 * k);
    expected.push_back(2);
    EXPECT_EQ(set_points(sent), expected);
    EXPECT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric(test_host() + ":DATASTAT:LCTSET") == 2.0; }, TIMEOUT_MS));

    find_button(dialog, "Copy To Clipboard")->click();
    const auto stitched = read_columns(std::istringstream(QApplication::clipboard()->text().toStdString()));
    ASSERT_EQ(int(stitched.size()), rows(dialog));
    QTemporaryDir dir;
    QProcess dump;
    dump.start(SONDAR_SIM, {"--dump-spectrum", dir.filePath("truth")});
    ASSERT_TRUE(dump.waitForFinished(TIMEOUT_MS));
    const auto truth = read_columns(std::ifstream(dir.filePath("truth").toStdString()));

    // Over 2 to 48 °C, against the truth between its points: the largest error and the correlation.
    double largest = 0, sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0, n = 0;
    for (const auto& [t, s] : stitched) {
        if (t < 2.0 || t > 48.0)
            continue;
        const size_t i = size_t(t / 0.0165);  // the truth's points are 0.0165 °C apart from 0
        const double u = truth[i].second + (truth[i + 1].second - truth[i].second) * (t - truth[i].first) / 0.0165;
        largest = std::max(largest, std::abs(s - u));
        sx += s, sy += u, sxx += s * s, syy += u * u, sxy += s * u, ++n;
    }
    const double correlation = (n * sxy - sx * sy) / std::sqrt((n * sxx - sx * sx) * (n * syy - sy * sy));
    EXPECT_GT(n, 800);
    EXPECT_GT(correlation, 0.995) << stitched.size() << " points";
    EXPECT_LT(largest, 0.02);

    // Every line of the sample: its peak within 0.03 °C of the truth's (whose own points are
    // 0.0165 °C apart), and at least 85% as deep.
    int lines = 0;
    for (size_t i = 1; i + 1 < truth.size(); ++i) {
        const auto [t, depth] = truth[i];
        if (t < 2.0 || t > 48.0 || depth < 0.02 || depth <= truth[i - 1].second || depth < truth[i + 1].second)
            continue;
        ++lines;
        std::pair<double, double> top{0, 0};
        for (const auto& point : stitched)
            if (std::abs(point.first - t) < 0.3 && point.second > top.second)
                top = point;
        EXPECT_NEAR(top.first, t, 0.03) << depth;
        EXPECT_NEAR(top.second, depth, 0.15 * depth) << t;
    }
    EXPECT_EQ(lines, 10);
}

}  // namespace
