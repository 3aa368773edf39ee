// The live windows at full load: a chart of ten variables of 300 s at 40 Hz repainted on a
// canvas of the dialog's size, and one refresh of the watch table by a 30-field DATASTAT with
// all five value columns changing. Each beside its reference: one curve, and the same stream
// taken by the connector with no window on it.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <qwt_plot.h>

#include "bench/application.h"
#include "bench/ratio.h"
#include "sim/data_line.h"
#include "watch/plotdialog.h"
#include "watch/watchtolvandialog.h"

namespace {

constexpr int FIELDS = 30;
constexpr int CHART_POINTS = 300 * 40;

std::string header(const std::string& record)
{
    std::string line = record + "H\tMSEC\tSECONDS\tNANOSECONDS\tDIAG";
    for (int i = 4; i < FIELDS - 1; ++i)
        line += "\tFIELD" + std::to_string(i);
    return line + "\tCHK\n";
}

// A record whose values differ with `variant`, so that every cell changes from one to the next.
std::string record(const std::string& name, int variant)
{
    std::string line = name + "\t1000\t1479427135\t" + std::to_string(250000000 + variant) + "\t" +
                       std::to_string(5 + variant);
    for (int i = 4; i < FIELDS - 1; ++i)
        line += "\t" + std::to_string(1.8 + i * 0.0137 + variant * 0.001).substr(0, 8);
    return with_sum(line + "\t");
}

const char* const kTableRecords[] = {"DATA", "DATACLOCKSYNC", "DATATEST", "DATASTAT"};

void feed_table_stream(Connector& connector, benchmark::State& state)
{
    for (const char* name : kTableRecords)
        connector.HandleData(header(name));
    connector.HandleData("DATADIAGH\tA\tB\tC\tD\tE\tF\tG\tH\n");
    std::vector<std::string> lines[2];
    for (int variant : {0, 1})
        for (const char* name : kTableRecords)
            lines[variant].push_back(record(name, variant));
    int variant = 0;
    for (auto _ : state) {
        for (const std::string& line : lines[variant])
            connector.HandleData(line);
        variant ^= 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_WatchTableStream(benchmark::State& state)
{
    ensure_application();
    WatchTolvanDialog window(nullptr, "bench-table", "tolvan");
    feed_table_stream(window.GetConnector(), state);
}
BENCHMARK(BM_WatchTableStream);

void BM_StreamWithoutWindow(benchmark::State& state)
{
    Connector connector(nullptr, "bench-stream", "tolvan");
    feed_table_stream(connector, state);
}
BENCHMARK(BM_StreamWithoutWindow);

// One replot of `curves` variables of CHART_POINTS samples each, all within the axis.
void BM_ChartReplot(benchmark::State& state)
{
    ensure_application();
    auto connector = Connector::Factory(nullptr, "bench-chart", "tolvan");
    connector->HandleData(header("DATA"));
    PlotDialog plot(nullptr, "", "Bench Data");
    plot.resize(700, 350);
    plot.show();
    const int curves = int(state.range(0));
    for (int c = 0; c < curves; ++c)
        plot._AddPlotItem("bench-chart:DATA:FIELD" + std::to_string(4 + c), c % 2 == 1);
    plot.OnXaxisWidthChanged(2);  // 300 s: every sample is on the axis
    for (int c = 0; c < curves; ++c)
        for (int i = 0; i < CHART_POINTS; ++i)
            plot.Variables()[size_t(c)]->_AddData(i / 40.0, c + std::sin(i * 0.01) + 0.1 * std::sin(i * 1.7));
    // The replot and the paint that the event loop would do after it, into an image of the canvas.
    QApplication::processEvents();
    QWidget* canvas = plot.Plot()->canvas();
    QImage image(canvas->size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        plot.Plot()->replot();
        canvas->render(&image);
    }
    state.SetItemsProcessed(state.iterations() * curves * CHART_POINTS);
}
BENCHMARK(BM_ChartReplot)->Arg(0)->Arg(1)->Arg(2)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);

const bool registered =
    RegisterRatio("Chart replot, 10 curves / 1 curve", "BM_ChartReplot/10", "BM_ChartReplot/1") &&
    RegisterRatio("Watch table pass / stream without window", "BM_WatchTableStream", "BM_StreamWithoutWindow");

}  // namespace
