#include <gtest/gtest.h>

#include <QDropEvent>
#include <QMimeData>

#include <cmath>
#include <set>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include "tests/watch/watch_test_util.h"
#include "watch/chartstatistics.h"
#include "watch/densecurve.h"
#include "watch/plotdialog.h"

namespace {

TEST(ChartStatistics, CompensatedSumsAndTheLabelCadence)
{
    ChartStatistics statistics;
    const struct {
        double time, value;
        bool min, max, mean;
    } samples[] = {
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
}

TEST(ChartStatistics, DeviationWrapsFromN46342)
{
    ChartStatistics statistics;
    for (int n = 1; n <= 46341; ++n)
        statistics.Add(3.0 * n, n % 2);
    EXPECT_NEAR(statistics.StdDev(), 0.5, 1e-4);
    statistics.Add(3.0 * 46342, 0);
    EXPECT_TRUE(std::isnan(statistics.StdDev()));
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
    const QRectF rect = PlotDialog::_QwtPlotData(&data).boundingRect();
    EXPECT_EQ(rect, QRectF(-300, 1, 300, 5));
    EXPECT_EQ(PlotDialog::_QwtPlotData(&data).sample(0), QPointF(61 - 330.5, 6));
}

// A chart that takes drops from the test.
class DropTarget : public PlotDialog {
public:
    using PlotDialog::PlotDialog;
    using PlotDialog::dropEvent;
};

TEST(PixelColumnFilter, KeepsTheFirstLowestHighestAndLastOfAColumn)
{
    PixelColumnFilter filter;
    for (QPointF point : {QPointF(0.1, 5), QPointF(0.2, 2), QPointF(0.3, 1), QPointF(0.4, 7), QPointF(0.5, 9),
                          QPointF(0.6, 6), QPointF(0.9, 4), QPointF(1.5, 3), QPointF(3.2, 2), QPointF(3.4, 2)})
        filter.Add(point);
    EXPECT_EQ(filter.Points(), QPolygonF(QVector<QPointF>{{0.1, 5}, {0.3, 1}, {0.5, 9}, {0.9, 4}, {1.5, 3}, {3.2, 2}, {3.4, 2}}));
}

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
    QStringList labels;
    for (QLabel* label : plot.findChildren<QLabel*>())
        labels << label->text();
    EXPECT_TRUE(labels.contains(" Max: 30"));
    EXPECT_TRUE(labels.contains(" Mean: 20"));
}

TEST_F(Chart, ColoursRestartAtTheEleventhVariable)
{
    PlotDialog plot(nullptr, "", "Tolvan Data");
    EXPECT_TRUE(plot.Variables().empty());
    plot.OnPause();  // nothing to pause
    plot._AddPlotItem("nohost:DATA:X", false);
    EXPECT_TRUE(plot.Variables().empty());
    for (int i = 0; i < 11; ++i)
        plot._AddPlotItem(Var("X"), false);
    const QwtPlotItemList curves = plot.Plot()->itemList(QwtPlotItem::Rtti_PlotCurve);
    ASSERT_EQ(curves.size(), 11);
    const auto colour = [&](int i) { return static_cast<QwtPlotCurve*>(curves[i])->pen().color(); };
    std::set<QRgb> first_ten;
    for (int i = 0; i < 10; ++i)
        first_ten.insert(colour(i).rgba());
    EXPECT_EQ(first_ten.size(), 10u);
    EXPECT_EQ(colour(10), colour(0));
    EXPECT_EQ(plot.Variables()[0]->owner, &plot);  // the first one dropped owns the chart
}

TEST_F(Chart, DropsGoOnTheAxisOfTheirHalf)
{
    DropTarget plot(nullptr, "", "Tolvan Data");
    const int half = plot.width() / 2;
    const struct {
        int x;
        QString text;
        bool taken, right;
    } drops[] = {
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
}

}  // namespace
