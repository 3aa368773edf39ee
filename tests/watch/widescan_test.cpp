// The wide scan window: its steps fed by hand through a connector, and a whole sweep against
// sondar-sim, whose spectrum is known.

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "libskarn/doctolvan.h"
#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/watchtolvandialog.h"
#include "watch/widetolvandialog.h"

namespace {

// The set point of each message.
std::vector<double> set_points(const std::vector<std::string>& sent)
{
    std::vector<double> points;
    for (const std::string& text : sent)
        points.push_back(std::stod(text.substr(text.find("<temp>") + 6)));
    return points;
}

size_t points(const WideTolvanDialog& dialog, int curve)
{
    const QwtPlotItemList curves = dialog.findChild<QwtPlot*>()->itemList(QwtPlotItem::Rtti_PlotCurve);
    return static_cast<QwtPlotCurve*>(curves.at(curve))->dataSize();
}

int rows(const WideTolvanDialog& dialog)
{
    return dialog.findChild<QTableView*>()->model()->rowCount();
}

// The dialog on a connector fed by hand, with every message it sends written down.
struct Scan {
    Scan()
        : connector(Connector::Factory(nullptr, test_host(), "tolvan")),
          dialog(nullptr, test_host(), connector->Doc_Tolvan(), test_host() + ":DATAR:WAVEFORM",
                 test_host() + ":DATAS:WAVEFORM", test_host() + ":DATASTAT:LCTACTUAL")
    {
        QObject::connect(&dialog, &WideTolvanDialog::SendRawXML, [this](std::string text) { sent.push_back(text); });
    }
    void Click(const QString& text) { find_button(dialog, text)->click(); }

    std::shared_ptr<Connector> connector;
    WideTolvanDialog dialog;
    std::vector<std::string> sent;
};

std::string waveform(const char* record, int points)
{
    std::string line = std::string(record) + "\t2.0000";
    for (int i = 0; i < points; ++i)
        line += "\t" + std::to_string(i == 50 ? 1.0 : 0.01 * i);
    return with_sum(line + "\t");
}

std::string status(double temp)
{
    return with_sum("DATASTAT\t1000\t0\t0\t0\t2.000\t" + std::to_string(temp) + "\t");
}

TEST(WideTolvanDialog, StepsByHand)
{
    Scan scan;
    Connector& link = *scan.connector;
    link.HandleData("DATASTATH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tLCTSET\tLCTACTUAL\tCHK\n");
    scan.dialog.SetStartLaserTemp();
    EXPECT_EQ(scan.sent.at(0), "<arvex><tolvan><factory><delta1>100</delta1></factory><cfg><linelock><lasercooler>"
                               "<control>manual</control><temp>2</temp></lasercooler></linelock></cfg></tolvan>"
                               "</arvex>\n");

    // Idle: the label follows the laser, nothing is sent.
    link.HandleData(waveform("DATAS", 100));
    link.HandleData(waveform("DATAS", 100));
    link.HandleData(waveform("DATAS", 100));
    link.HandleData(status(12.3456));
    EXPECT_EQ(scan.dialog.findChild<QLabel*>()->text(), "12.35 C");
    EXPECT_EQ(scan.sent.size(), 1u);

    // 99 numbers don't count towards the settling; 101 are taken as the first 100. The waveforms
    // seen while idle count.
    scan.Click("Start");
    link.HandleData(waveform("DATAS", 99));
    link.HandleData(status(2.0));
    EXPECT_EQ(set_points(scan.sent), (std::vector<double>{2, 2, 2.25}));
    EXPECT_EQ(points(scan.dialog, 0), 20u);
    EXPECT_EQ(points(scan.dialog, 2), 0u);  // no reference waveform yet
    for (const char* record : {"DATAS", "DATAS", "DATAR", "DATAR", "DATAR"})
        link.HandleData(waveform(record, 101));
    link.HandleData(waveform("DATAS", 99));
    link.HandleData(status(2.25));
    EXPECT_EQ(set_points(scan.sent).back(), 2.25);
    link.HandleData(waveform("DATAS", 100));
    link.HandleData(status(2.25));
    EXPECT_EQ(set_points(scan.sent).back(), 2.5);
    EXPECT_EQ(points(scan.dialog, 0), 40u);
    EXPECT_EQ(points(scan.dialog, 2), 20u);

    // Stopped with two scans and no estimate: no curves, no rows, the laser back at 2.
    EXPECT_EQ(rows(scan.dialog), 8);
    scan.Click("Stop");
    EXPECT_EQ(rows(scan.dialog), 0);
    EXPECT_EQ(points(scan.dialog, 1), 0u);
    EXPECT_EQ(set_points(scan.sent), (std::vector<double>{2, 2, 2.25, 2.5, 2}));
    link.HandleData(waveform("DATAS", 100));
    link.HandleData(status(2.25));
    EXPECT_EQ(scan.sent.size(), 5u);
}

TEST(WideTolvanDialog, PrintDialogIsKept)
{
    QTemporaryDir dir;
    std::vector<QPrintDialog*> seen;
    WideTolvanDialog::SetPrintDialog([&](QPrintDialog& dialog) {
        seen.push_back(&dialog);
        if (seen.size() == 1)
            dialog.printer()->setOutputFileName(dir.filePath("scan.pdf"));
        return seen.size() == 1 ? int(QDialog::Accepted) : int(QDialog::Rejected);
    });
    Scan scan;
    scan.Click("Print...");
    scan.Click("Print...");
    WideTolvanDialog::SetPrintDialog(nullptr);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[1]->printer()->outputFileName(), dir.filePath("scan.pdf"));
    EXPECT_EQ(seen[1]->printer()->pageLayout().orientation(), QPageLayout::Landscape);
    EXPECT_GT(QFileInfo(dir.filePath("scan.pdf")).size(), 0);
}

// (temperature, sample) per line of a tab-separated text.
std::vector<std::pair<double, double>> read_columns(std::istream& in)
{
    std::vector<std::pair<double, double>> rows;
    double t, s, r;
    while (in >> t >> s >> r)
        rows.emplace_back(t, s);
    return rows;
}

// The truth between its points.
double truth_at(const std::vector<std::pair<double, double>>& truth, double t)
{
    const auto after = std::lower_bound(truth.begin(), truth.end(), std::make_pair(t, -1e9));
    if (after == truth.begin() || after == truth.end())
        return after == truth.end() ? truth.back().second : after->second;
    const auto before = after - 1;
    return before->second + (after->second - before->second) * (t - before->first) / (after->first - before->first);
}

// The peaks above `floor` between `from` and `to`.
std::vector<std::pair<double, double>> peaks(const std::vector<std::pair<double, double>>& curve, double from,
                                             double to, double floor)
{
    std::vector<std::pair<double, double>> found;
    for (size_t i = 1; i + 1 < curve.size(); ++i)
        if (curve[i].first >= from && curve[i].first <= to && curve[i].second > floor &&
            curve[i].second > curve[i - 1].second && curve[i].second >= curve[i + 1].second)
            found.push_back(curve[i]);
    return found;
}

// The instrument runs three times as fast: a step each third of a second, the sweep about a minute.
// Five samples a second, each status record going out with one: the laser's temperature in the
// status is that of the latest waveforms.
TEST(WideTolvanDialog, SweepReproducesTheSimulatedSpectrum)
{
    constexpr int SWEEP_MS = 300000;
    SimProcess sim({"--model", "tolvan", "--name", "widesweep", "--speed", "3", "--rate", "5"});
    ASSERT_TRUE(sim.WaitListening());
    auto* window = new WatchTolvanDialog(nullptr, test_host(), "tolvan");
    std::unique_ptr<WatchTolvanDialog> owner(window);
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
    // The instrument took the last one: its laser heads back to 2 °C.
    EXPECT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric(test_host() + ":DATASTAT:LCTSET") == 2.0; },
                                TIMEOUT_MS));

    find_button(dialog, "Copy To Clipboard")->click();
    std::istringstream copied(QApplication::clipboard()->text().toStdString());
    const auto stitched = read_columns(copied);
    ASSERT_EQ(int(stitched.size()), rows(dialog));
    EXPECT_EQ(points(dialog, 1), stitched.size());

    QTemporaryDir dir;
    const QString path = dir.filePath("truth.txt");
    QProcess dump;
    dump.start(SONDAR_SIM, {"--dump-spectrum", path});
    ASSERT_TRUE(dump.waitForFinished(TIMEOUT_MS));
    std::ifstream file(path.toStdString());
    const auto truth = read_columns(file);
    ASSERT_GT(truth.size(), 3000u);

    // Over 2 to 48 °C: the largest error and the correlation with the truth.
    double largest = 0, sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
    int n = 0;
    for (const auto& [t, s] : stitched) {
        if (t < 2.0 || t > 48.0)
            continue;
        const double u = truth_at(truth, t);
        largest = std::max(largest, std::abs(s - u));
        sx += s, sy += u, sxx += s * s, syy += u * u, sxy += s * u, ++n;
    }
    const double correlation = (n * sxy - sx * sy) / std::sqrt((n * sxx - sx * sx) * (n * syy - sy * sy));
    std::cout << "stitched " << stitched.size() << " points from " << stitched.front().first << " to "
              << stitched.back().first << " C; over 2-48 C: correlation " << correlation << ", largest error "
              << largest << '\n';
    EXPECT_GT(n, 800);
    EXPECT_GT(correlation, 0.995);
    EXPECT_LT(largest, 0.02);

    // Every line of the sample: within 0.03 °C of where the truth peaks (the truth's own points are
    // 0.0165 °C apart), and at least 85% as deep.
    const auto lines = peaks(truth, 2.0, 48.0, 0.02);
    EXPECT_EQ(lines.size(), 10u);
    for (const auto& [t, depth] : lines) {
        std::vector<std::pair<double, double>> near;
        for (const auto& point : stitched)
            if (std::abs(point.first - t) < 0.3)
                near.push_back(point);
        ASSERT_FALSE(near.empty()) << t;
        const auto top = *std::max_element(near.begin(), near.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        std::cout << "line at " << t << " C, depth " << depth << ": stitched at " << top.first << " C, depth "
                  << top.second << '\n';
        EXPECT_NEAR(top.first, t, 0.03) << t;
        EXPECT_NEAR(top.second, depth, 0.15 * depth) << t;
    }
}

TEST(WideTolvanDialog, PlotDataRange)
{
    WideTolvanDialog::_PlotData data;
    data.AddData(0, 5);  // from 0 to 1, a first point above widens the top only
    EXPECT_EQ(data.min, 0);
    EXPECT_EQ(data.max, 5);
    data.AddData(1, -2);
    EXPECT_EQ(data.min, -2);
    data.dirty = false;
    for (size_t i = data.y.size(); i < WideTolvanDialog::_PlotData::MAX_POINTS; ++i)
        data.AddData(double(i), 1);
    EXPECT_EQ(data.y.size(), WideTolvanDialog::_PlotData::KEEP_POINTS);
    EXPECT_EQ(data.x.front(), double(WideTolvanDialog::_PlotData::MAX_POINTS - WideTolvanDialog::_PlotData::KEEP_POINTS));
    EXPECT_TRUE(data.dirty);
}

}  // namespace
