// The waveform plot: what a record sets, and the zoom that the second waveform decides.

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include <qwt_plot_zoomer.h>

#include "tests/watch/watch_test_util.h"
#include "watch/plotwavedialog.h"

namespace {

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
    const struct {
        std::vector<double> values;
        bool scale;
        double lo, hi;
    } cases[] = {
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

class WavePlot : public ::testing::Test {
protected:
    void Open(const std::string& type, const char* first, const char* second, double x_max, double y_max,
              bool fixed)
    {
        connector = Connector::Factory(nullptr, test_host(), type);
        plot = std::make_unique<PlotWaveDialog>(nullptr, test_host() + ":" + first + ":WAVEFORM",
                                                test_host() + ":" + second + ":WAVEFORM", "Waveforms", "Reference",
                                                "Sample", -x_max, x_max, -49.5, 0, y_max, fixed);
    }

    std::shared_ptr<Connector> connector;
    std::unique_ptr<PlotWaveDialog> plot;
};

TEST_F(WavePlot, TheSecondWaveformSetsTheZoomHeight)
{
    Open("tolvan", "DATAR", "DATAS", 50, 1, false);
    const QRectF start(-50, 0, 100, 1);
    EXPECT_EQ(plot->Zoomer()->zoomRect(), start);
    connector->HandleData(waveform("DATAR", {3, 4, 5}));  // the first only repaints
    EXPECT_EQ(plot->Zoomer()->zoomBase(), start);
    EXPECT_EQ(plot->First().yMin, 3);
    connector->HandleData(waveform("DATAS", {-1, 0.5, 2}));
    EXPECT_EQ(plot->Zoomer()->zoomBase(), QRectF(-50, -1, 100, 3));
    EXPECT_EQ(plot->Zoomer()->zoomRect(), start);  // the view stays until zoomed out
    plot->OnZoomOut();
    EXPECT_EQ(plot->Zoomer()->zoomRect(), QRectF(-50, -1, 100, 3));

    // A flat waveform normalises to a division by zero, passed on as it is.
    connector->HandleData(waveform("DATAS", {0.5, 0.5}));
    plot->OnNormalizedChanged(Qt::Checked);
    const PlotWaveDialog::_QwtPlotData series(&plot->Second());
    EXPECT_TRUE(std::isnan(series.sample(1).y()));
    EXPECT_EQ(series.sample(1).x(), -48.5);
    EXPECT_EQ(series.boundingRect(), QRectF(-50, 0, 100, 100));
}

TEST_F(WavePlot, FixedRangeTakesXFromTheFirstWaveform)
{
    Open("dravik", "DATACELLA", "DATACELLB", 0, 65535, true);
    connector->HandleData(waveform("DATACELLB", {7}));  // one point: no x range
    EXPECT_EQ(plot->Second().xMax, 0);
    connector->HandleData(waveform("DATACELLB", {100, 200, 300, 400, 500}));
    EXPECT_EQ(plot->Second().xMax, 4);
    EXPECT_EQ(plot->Second().yMax, 65535);
    EXPECT_EQ(plot->Zoomer()->zoomRect(), QRectF(0, 0, 4, 65535));
    connector->HandleData(waveform("DATACELLB", {1, 2, 3}));  // only once
    EXPECT_EQ(plot->Second().xMax, 4);
}

}  // namespace
