// Charts of variables over time, and the waveform plots.

#include <QDropEvent>
#include <QMimeData>

#include <cmath>
#include <numeric>
#include <set>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_zoomer.h>

#include "tests/watch/watch_test_util.h"
#include "watch/chartstatistics.h"
#include "watch/densecurve.h"
#include "watch/plotdialog.h"
#include "watch/plotwavedialog.h"

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

TEST_F(Chart, DropsGoOnTheAxisOfTheirHalfAndColoursRestartAtTheEleventhVariable)
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
    for (int i = 2; i < 11; ++i)
        plot._AddPlotItem(Var("X"), false);
    const QwtPlotItemList curves = plot.Plot()->itemList(QwtPlotItem::Rtti_PlotCurve);
    ASSERT_EQ(curves.size(), 11);
    const auto colour = [&](int i) { return static_cast<QwtPlotCurve*>(curves[i])->pen().color(); };
    std::set<QRgb> first_ten;
    for (int i = 0; i < 10; ++i)
        first_ten.insert(colour(i).rgba());
    EXPECT_EQ(first_ten.size(), 10u);
    EXPECT_EQ(colour(10), colour(0));
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

}  // namespace
