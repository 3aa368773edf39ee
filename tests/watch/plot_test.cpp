// Charts of variables over time, the waveform plots, and the wide spectrum scan: Stitch on constructed scans,
// the window stepped by hand, a sweep against sondar-sim.

#include <QPrintDialog>
#include <QPrinter>

#include <cmath>
#include <limits>
#include <numeric>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_zoomer.h>

#include "sim/sim_instrument.h"
#include "sim/spectrum.h"
#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/chartstatistics.h"
#include "watch/densecurve.h"
#include "watch/plotdialog.h"
#include "watch/plotwavedialog.h"
#include "watch/stitch.h"
#include "watch/watchtolvandialog.h"
#include "watch/widetolvandialog.h"

namespace {

TEST(ChartStatistics, CompensatedSumsTheLabelCadenceAndADeviationThatWrapsFromN46342)
{
    ChartStatistics statistics;
    const struct { double time, value; bool min, max, mean; } samples[] = {
        {10, 1e16, true, true, false},  // the first sample: no mean yet
        {11, 1, true, false, true},     // more than 2 s after the last update (at 0)
        {12, 1, false, false, false},
        {13, 1, false, false, false},   // exactly 2 s: not yet
        {13.5, 1, false, false, true},
    };
    for (const auto& s : samples) {
        const ChartStatistics::Changes changes = statistics.Add(s.time, s.value);
        EXPECT_EQ(changes.min, s.min) << s.time;
        EXPECT_EQ(changes.max, s.max) << s.time;
        EXPECT_EQ(changes.mean, s.mean) << s.time;
    }
    for (int i = 0; i < 6; ++i)
        statistics.Add(14, 1);
    // A plain sum would have lost every 1 against 1e16.
    EXPECT_EQ(statistics.Mean(), (1e16 + 10) / 11);
    // Clear keeps the time of the last update: the second sample after it may show the mean.
    statistics.Clear();
    const ChartStatistics::Changes first = statistics.Add(15, 3);
    EXPECT_TRUE(first.min && first.max && !first.mean);
    EXPECT_TRUE(statistics.Add(15.6, 5).mean);
    EXPECT_EQ(statistics.Mean(), 4);
    EXPECT_DOUBLE_EQ(statistics.StdDev(), std::sqrt(2.0));
    ChartStatistics wraps;
    for (int n = 1; n <= 46341; ++n)
        wraps.Add(3.0 * n, n % 2);
    EXPECT_NEAR(wraps.StdDev(), 0.5, 1e-4);
    wraps.Add(3.0 * 46342, 0);
    EXPECT_TRUE(std::isnan(wraps.StdDev()));
}

TEST(ChartQueue, KeepsThreeHundredSecondsAndRescansOnlyWhenNeeded)
{
    PlotDialog::_PlotData data("nohost:DATA:X", nullptr);
    data._AddData(0, 5);
    EXPECT_EQ(data.min, 5);
    EXPECT_LT(data.max, -1e300);  // one chain: the first sample sets only the minimum
    data._AddData(30, 7);
    EXPECT_FALSE(data.dirty);
    data._AddData(61, 6);  // wider than the axis
    EXPECT_TRUE(data.dirty);
    data._Update();
    EXPECT_FALSE(data.dirty);
    EXPECT_EQ(data.min, 6);  // the sample at 0 is left of the axis
    EXPECT_EQ(data.max, 7);
    data.width = 300;
    data._AddData(300, 1);
    EXPECT_EQ(data.times.size(), 4u);
    data._AddData(330.5, 2);  // 0 and 30 fall out
    EXPECT_EQ(data.times, (std::deque<double>{61, 300, 330.5}));
    EXPECT_EQ(data.values.size(), 3u);
    EXPECT_EQ(PlotDialog::_QwtPlotData(&data).boundingRect(), QRectF(-300, 1, 300, 5));
    EXPECT_EQ(PlotDialog::_QwtPlotData(&data).sample(0), QPointF(61 - 330.5, 6));
}

TEST(PixelColumnFilter, KeepsTheFirstLowestHighestAndLastOfAColumn)
{
    PixelColumnFilter filter;
    for (QPointF point : {QPointF(0.1, 5), QPointF(0.2, 2), QPointF(0.3, 1), QPointF(0.4, 7), QPointF(0.5, 9),
                          QPointF(0.6, 6), QPointF(0.9, 4), QPointF(1.5, 3), QPointF(3.2, 2), QPointF(3.4, 2)})
        filter.Add(point);
    EXPECT_EQ(filter.Points(), QPolygonF(QVector<QPointF>{{0.1, 5}, {0.3, 1}, {0.5, 9}, {0.9, 4}, {1.5, 3}, {3.2, 2}, {3.4, 2}}));
}

// A chart that takes drops from the test.
class DropTarget : public PlotDialog {
public:
    using PlotDialog::PlotDialog;
    using PlotDialog::dropEvent;
};

class Chart : public ::testing::Test {
protected:
    void SetUp() override
    {
        connector = Connector::Factory(nullptr, test_host(), "tolvan");
        connector->HandleData("DATAH\tMSEC\tSECONDS\tNANOSECONDS\tX\tY\tCHK\n");
    }
    void Data(int seconds, int x)
    {
        connector->HandleData(with_sum("DATA\t0\t" + std::to_string(seconds) + "\t0\t" + std::to_string(x) + "\t1\t"));
    }
    std::string Var(const std::string& field) { return test_host() + ":DATA:" + field; }
    std::shared_ptr<Connector> connector;
};

TEST_F(Chart, PausedVariablesDropSamples)
{
    PlotDialog plot(nullptr, Var("X"), "Tolvan Data");
    ASSERT_EQ(plot.Variables().size(), 1u);
    Data(1, 10);
    plot.OnPause();
    EXPECT_TRUE(find_button(plot, "Resume"));
    plot._AddPlotItem(Var("Y"), true);  // comes unpaused, and collects
    Data(2, 20);
    plot.OnPause();
    EXPECT_TRUE(find_button(plot, "Pause"));
    Data(5, 30);
    EXPECT_EQ(plot.Variables()[0]->times, (std::deque<double>{1, 5}));
    EXPECT_EQ(plot.Variables()[1]->times, (std::deque<double>{2, 5}));
    EXPECT_EQ(plot.Variables()[1]->owner, nullptr);
    // The labels follow the first variable only.
    EXPECT_TRUE(label_texts(&plot).contains(" Max: 30"));
    EXPECT_TRUE(label_texts(&plot).contains(" Mean: 20"));
}

// The width combo sets the time axis of every curve, one added later too; the y range is what it shows.
TEST_F(Chart, WidthComboSetsTheAxisOfEveryCurve)
{
    PlotDialog plot(nullptr, Var("X"), "Tolvan Data");
    for (int t = 0; t <= 100; ++t)
        Data(t, t);
    const auto shown = [&](int curve) {
        return plot.Plot()->itemList(QwtPlotItem::Rtti_PlotCurve).at(curve)->boundingRect();
    };
    EXPECT_EQ(shown(0), QRectF(-60, 40, 60, 60));
    auto* combo = plot.findChild<QComboBox*>();
    combo->setCurrentIndex(0);
    EXPECT_EQ(shown(0), QRectF(-10, 90, 10, 10));
    plot._AddPlotItem(Var("Y"), false);
    Data(101, 101);
    EXPECT_EQ(shown(1).left(), -10);
    combo->setCurrentIndex(2);
    EXPECT_EQ(shown(0), QRectF(-300, 0, 300, 101));
}

TEST_F(Chart, DropsGoOnTheAxisOfTheirHalf)
{
    DropTarget plot(nullptr, "", "Tolvan Data");
    EXPECT_TRUE(plot.Variables().empty());
    plot.OnPause();  // nothing to pause
    plot._AddPlotItem("nohost:DATA:X", false);
    EXPECT_TRUE(plot.Variables().empty());
    const int half = plot.width() / 2;
    const struct { int x; QString text; bool taken, right; } drops[] = {
        {half, QString::fromStdString(Var("X") + " and more"), true, false},
        {half + 1, QString::fromStdString(Var("Y")), true, true},
        {10, "  ", false, false},
    };
    for (const auto& d : drops) {
        QMimeData mime;
        mime.setText(d.text);
        QDropEvent drop(QPointF(d.x, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        drop.setDropAction(Qt::CopyAction);
        drop.setAccepted(false);
        plot.dropEvent(&drop);
        EXPECT_EQ(drop.isAccepted(), d.taken) << d.x;
        if (d.taken && !plot.Variables().empty()) {
            EXPECT_EQ(plot.Variables().back()->text, VariableString(d.text.split(' ').first().toStdString()).str());
            const auto* curve = static_cast<QwtPlotCurve*>(plot.Plot()->itemList(QwtPlotItem::Rtti_PlotCurve).last());
            EXPECT_EQ(curve->yAxis() == QwtPlot::yRight, d.right) << d.x;
        }
    }
    EXPECT_EQ(plot.Variables().size(), 2u);
    EXPECT_EQ(plot.Variables()[0]->owner, &plot);  // the first one dropped owns the chart
}

// The waveform plot: what a record sets, and the zoom that the second waveform decides.
// A waveform line: the record name, one further field, the samples, a checksum text.
std::string waveform(const std::string& record, const std::vector<double>& values)
{
    std::string line = record + "\t25.0";
    for (double value : values)
        line += "\t" + QString::number(value).toStdString();
    return line + "\t123\n";
}

TEST(Waveform, ScaleTakesTheRangeFromTheMiddlePoints)
{
    std::vector<double> hundred(100);
    std::iota(hundred.begin(), hundred.end(), 1.0);
    const double lowest = std::numeric_limits<double>::max();
    const struct { std::vector<double> values; bool scale; double lo, hi; } cases[] = {
        {hundred, false, 1, 100},
        {hundred, true, 30, 70},
        {std::vector<double>(29, 5.0), true, lowest, -lowest},  // too short for the middle
        {{}, false, lowest, -lowest},
    };
    for (const auto& c : cases) {
        PlotWaveDialog::_PlotData data(nullptr, "nohost:DATAS:WAVEFORM", -50, 50, -49.5, 0, 1, false);
        data.scaleMiddle = c.scale;
        double lo, hi;
        data._Read(waveform("DATAS", c.values), lo, hi);
        EXPECT_EQ(data.values, c.values);
        EXPECT_EQ(lo, c.lo);
        EXPECT_EQ(hi, c.hi);
    }
}

// A waveform plot of `type` and the connector that feeds it.
struct WavePlot {
    WavePlot(const std::string& type, const char* first, const char* second, double x_max, double y_max, bool fixed)
        : connector(Connector::Factory(nullptr, test_host(), type)),
          plot(nullptr, test_host() + ":" + first + ":WAVEFORM", test_host() + ":" + second + ":WAVEFORM", "Waveforms",
               "Reference", "Sample", -x_max, x_max, -49.5, 0, y_max, fixed)
    {
    }
    void Feed(const std::string& line) { connector->HandleData(line); }
    std::shared_ptr<Connector> connector;
    PlotWaveDialog plot;
};

TEST(WavePlot, TheSecondWaveformSetsTheZoomHeightAndAFixedRangeTakesXFromTheFirst)
{
    WavePlot tolvan("tolvan", "DATAR", "DATAS", 50, 1, false);
    PlotWaveDialog& plot = tolvan.plot;
    const QRectF start(-50, 0, 100, 1);
    EXPECT_EQ(plot.Zoomer()->zoomRect(), start);
    tolvan.Feed(waveform("DATAR", {3, 4, 5}));  // the first only repaints
    EXPECT_EQ(plot.Zoomer()->zoomBase(), start);
    EXPECT_EQ(plot.First().yMin, 3);
    tolvan.Feed(waveform("DATAS", {-1, 0.5, 2}));
    EXPECT_EQ(plot.Zoomer()->zoomBase(), QRectF(-50, -1, 100, 3));
    EXPECT_EQ(plot.Zoomer()->zoomRect(), start);  // the view stays until zoomed out
    plot.OnZoomOut();
    EXPECT_EQ(plot.Zoomer()->zoomRect(), QRectF(-50, -1, 100, 3));
    // A flat waveform normalises to a division by zero, passed on as it is.
    tolvan.Feed(waveform("DATAS", {0.5, 0.5}));
    plot.OnNormalizedChanged(Qt::Checked);
    const PlotWaveDialog::_QwtPlotData series(&plot.Second());
    EXPECT_TRUE(std::isnan(series.sample(1).y()));
    EXPECT_EQ(series.sample(1).x(), -48.5);
    EXPECT_EQ(series.boundingRect(), QRectF(-50, 0, 100, 100));
    WavePlot dravik("dravik", "DATACELLA", "DATACELLB", 0, 65535, true);
    dravik.Feed(waveform("DATACELLB", {7}));  // one point: no x range
    EXPECT_EQ(dravik.plot.Second().xMax, 0);
    dravik.Feed(waveform("DATACELLB", {100, 200, 300, 400, 500}));
    EXPECT_EQ(dravik.plot.Second().xMax, 4);
    EXPECT_EQ(dravik.plot.Second().yMax, 65535);
    EXPECT_EQ(dravik.plot.Zoomer()->zoomRect(), QRectF(0, 0, 4, 65535));
    dravik.Feed(waveform("DATACELLB", {1, 2, 3}));  // only once
    EXPECT_EQ(dravik.plot.Second().xMax, 4);
}

// Stitch: slopes and temperatures are powers of two apart, so that keys are exact and the results can be
// worked out by hand.
struct Scan {
    float temp;
    std::vector<int> spikes;  // points of the sample at 1.0; the rest is 0
    float reference = 0;      // the reference is this plus the point number
    size_t points = Stitch::POINTS;
};

void add(Stitch& stitch, const std::vector<Scan>& scans)
{
    for (const Scan& scan : scans) {
        std::vector<float> sample(scan.points, 0.0f), reference(scan.points);
        for (int spike : scan.spikes)
            sample[size_t(spike)] = 1.0f;
        for (size_t i = 0; i < scan.points; ++i)
            reference[i] = scan.reference + float(i);
        stitch.AddWaveform(scan.temp, sample, reference);
    }
}

// The first result tells the slope that was used: the lowest scan's key 10 is at 5 - 40 s.
TEST(Stitch, ScanSets)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const struct { std::vector<Scan> scans; float first_temp, first_reference; } cases[] = {  // none: no results
        {{}, none, 0},
        {{{2, {70}}}, none, 0},                    // stopped before the second scan
        {{{2, {}}, {3, {}}}, none, 0},             // flat samples score 0 at every lag
        {{{2, {38}}, {3, {70}}}, none, 0},         // the laser went down: negative lag
        {{{2, {40, 60}}, {3, {50}}}, none, 0},     // equal scores at -10 and +10: the first wins
        {{{0, {70}}, {1, {38}}}, none, 0},         // a first scan at 0.0 is no scan
        {{{2, {70}}, {3, {38}, 0, 99}}, none, 0},  // 99 and 101 points are dropped
        {{{2, {70}}, {3, {38}, 0, 101}}, none, 0},
        {{{2, {70}}, {none, {38}}}, none, 0},
        {{{2, {70}}, {2, {38}}}, none, 0},  // one temperature twice: zero slope, all points on one key
        {{{5, {90}}, {6, {26}}, {7, {10}}}, 2.59375f, 11.25f},  // 1/64 and 1/16: the upper middle
        {{{5, {90}}, {6, {26}}, {7, {10}}, {7.25f, {2}}}, 3.796875f, 11.25f},  // and 1/32: the middle
        {{{0, {90}}, {1, {26}}, {2, {10}}, {2.25f, {2}, 7}}, -0.03125f, 7 + 13.5f},  // 0.0 gives no 1/64
        {{{5, {70}, 1000}, {5, {38}, 7}, {6, {6}}}, 3.796875f, 7 + 11.25f},  // the later equal one wins
    };
    for (const auto& c : cases) {
        Stitch stitch;
        add(stitch, c.scans);
        const bool empty = std::isnan(c.first_temp);
        ASSERT_EQ(stitch.Temperatures().empty() && stitch.Samples().empty() && stitch.References().empty(), empty)
            << "case " << &c - cases;
        if (!empty) {
            EXPECT_EQ(stitch.Temperatures().front(), c.first_temp);
            EXPECT_EQ(stitch.References().front(), c.first_reference) << c.first_temp;
        }
    }
}

// Spikes 32 points apart on scans one degree apart: 1/32 °C per point. The first keys are 0.75,
// 0.78125, 0.8125 with references 10, 11, 12; the grid starts at 0.8.
TEST(Stitch, HandWorkedJoin)
{
    Stitch stitch;
    add(stitch, {{2, {70}}, {3, {38}, 100}});
    const std::vector<float>& t = stitch.Temperatures();
    const std::vector<float>& r = stitch.References();
    ASSERT_EQ(t.size(), r.size());
    // The first window holds 0.8125 twice; results sit midway between the two middle keys.
    EXPECT_EQ(std::vector<float>(t.begin(), t.begin() + 3), (std::vector<float>{0.796875f, 0.859375f, 0.890625f}));
    EXPECT_EQ(std::vector<float>(r.begin(), r.begin() + 3), (std::vector<float>{11.25f, 13.5f, 14.5f}));
    for (size_t i = 0; i < t.size(); ++i)
        if (t[i] > 1.85f && t[i] < 3.1f) {
            EXPECT_GT(r[i], 100.0f) << t[i];  // the later scan's points win
        }
    const size_t count = t.size();
    EXPECT_EQ(t.back(), 4.140625f);
    // A scan with no estimate, half a degree past the last key: the grid point 4.2 is made once a
    // fourth entry comes, the next one spans the gap, and the walk ends there.
    add(stitch, {{6, {38}}});
    ASSERT_EQ(stitch.Temperatures().size(), count + 2);
    EXPECT_EQ(t[count], 4.203125f);
    EXPECT_EQ(t.back(), (4.21875f + 4.75f) / 2);
    // Clear leaves the references of the last result until the next join.
    stitch.Clear();
    EXPECT_TRUE(stitch.Temperatures().empty() && stitch.Samples().empty());
    EXPECT_EQ(stitch.References().size(), count + 2);
}

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

int rows(const WideTolvanDialog& dialog) { return dialog.findChild<QTableView*>()->model()->rowCount(); }

std::string waveform(const char* record, int count)
{
    std::string line = std::string(record) + "\t2.0000";
    for (int i = 0; i < count; ++i)
        line += "\t" + std::to_string(i == 50 ? 1.0 : 0.01 * i);
    return with_sum(line + "\t");
}

std::string status(const std::string& temp) { return with_sum("DATASTAT\t1000\t0\t0\t0\t2.000\t" + temp + "\t"); }

TEST(WideTolvanDialog, StepsByHandAndPrintsThroughOneKeptPrintDialog)
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
    QTemporaryDir dir;
    std::vector<QPrintDialog*> seen;
    WideTolvanDialog::SetPrintDialog([&](QPrintDialog& print) {
        seen.push_back(&print);
        if (seen.size() > 1)
            return int(QDialog::Rejected);
        print.printer()->setOutputFileName(dir.filePath("scan.pdf"));
        return int(QDialog::Accepted);
    });
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

// The simulated Tolvan runs in the test, tick by tick as its server runs it at speed 3 (60 ms of
// its time a tick, five samples a second, each status record going out with one), and each message
// reaches it at once: the sweep sees the same stream on any machine at any load.
TEST(WideTolvanDialog, SweepReproducesTheSimulatedSpectrum)
{
    auto sim = SimInstrument::Make("tolvan", "widesweep");
    ASSERT_TRUE(sim->SetRate(5));
    sim->Serve("<arvex><tolvan><output><status>true</status><waveforms>true</waveforms></output></tolvan></arvex>");
    std::unique_ptr<WatchTolvanDialog> window(new WatchTolvanDialog(nullptr, test_host(), "tolvan"));
    Connector& link = window->GetConnector();
    const auto feed = [&](const std::string& lines) {
        for (const std::string& line : split_lines(lines))
            link.HandleData(line + "\n");
    };
    feed(sim->Headers());
    double now = 0;
    // Ticks until `done`, within an hour of the instrument's time.
    const auto run_until = [&](const std::function<bool()>& done) {
        while (!done() && now < 3600) {
            sim->Advance(now += 0.06);
            feed(sim->TakeLines());
        }
        return done();
    };
    // Opened twice, one window; opening sends the laser to 2 °C.
    find_button(*window, "Wide Scan")->click();
    find_button(*window, "Wide Scan")->click();
    ASSERT_EQ(window->findChildren<WideTolvanDialog*>().size(), 1);
    WideTolvanDialog& dialog = *window->findChild<WideTolvanDialog*>();
    EXPECT_TRUE(dialog.isVisible());
    std::vector<std::string> sent;
    QObject::connect(&dialog, &WideTolvanDialog::SendRawXML, [&](std::string text) {
        sent.push_back(text);
        sim->Serve(text);
    });
    dialog.SetStartLaserTemp();
    const std::string laser = test_host() + ":DATASTAT:LCTACTUAL";
    ASSERT_TRUE(run_until([&] { return std::abs(link.VarNumeric(laser) - 2.0) < 0.001; }));
    find_button(dialog, "Start")->click();
    ASSERT_TRUE(run_until([&] { return sent.size() == 187; })) << sent.size();
    std::vector<double> expected{2};
    for (int k = 0; k <= 184; ++k)
        expected.push_back(2 + 0.25 * k);
    expected.push_back(2);
    EXPECT_EQ(set_points(sent), expected);
    EXPECT_TRUE(run_until([&] { return link.VarNumeric(test_host() + ":DATASTAT:LCTSET") == 2.0; }));
    find_button(dialog, "Copy To Clipboard")->click();
    const auto stitched = read_columns(std::istringstream(QApplication::clipboard()->text().toStdString()));
    ASSERT_EQ(int(stitched.size()), rows(dialog));
    std::stringstream dump;
    SimSpectrum::Dump(dump);
    const auto truth = read_columns(std::move(dump));
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
