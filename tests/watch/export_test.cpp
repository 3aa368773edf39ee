// Charts taken off the screen: the CSV of a chart's samples, images of a plot, and layouts
// written and read back.

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <qwt_plot.h>

#include "tests/watch/watch_test_util.h"
#include "watch/chartexport.h"
#include "watch/plotdialog.h"
#include "watch/plotexport.h"
#include "watch/windowlayout.h"

namespace {

TEST(ChartCsv, MergesByTimeKeepsRepeatedTimesAndCutsEachVariableAtItsOwnNewest)
{
    const ChartSeries ch4{"lab:DATA:CH4", {100, 101, 102}, {1.5, 2, 0.1}};
    const ChartSeries co2{"lab:DATA:CO2, dry", {101, 102}, {400, 401}};
    // Its own clock: drawn against its own newest, merged by its record times.
    const ChartSeries other{"field:DATASTAT:T", {7, 7, 8}, {20, 21, 22}};
    const double all = -1e9;
    const struct {
        std::vector<ChartSeries> series;
        double from, to;
        std::string csv;
    } rows[] = {
        {{ch4, co2}, all, 0,
         "Seconds Before Newest,Record Time,lab:DATA:CH4,\"lab:DATA:CO2, dry\"\n"
         "-2,100,1.5,\n-1,101,2,400\n0,102,0.1,401\n"},
        {{ch4, co2}, -1, 0, "Seconds Before Newest,Record Time,lab:DATA:CH4,\"lab:DATA:CO2, dry\"\n"
                            "-1,101,2,400\n0,102,0.1,401\n"},
        {{ch4, other}, -1, -0.5, "Seconds Before Newest,Record Time,lab:DATA:CH4,field:DATASTAT:T\n"
                                 "-95,7,,20\n-95,7,,21\n-1,101,2,\n"},
        {{ch4, {"empty", {}, {}}}, all, 0, "Seconds Before Newest,Record Time,lab:DATA:CH4,empty\n"
                                           "-2,100,1.5,\n-1,101,2,\n0,102,0.1,\n"},
        {{ch4}, 1, 2, "Seconds Before Newest,Record Time,lab:DATA:CH4\n"},
        {{{"say \"hi\"", {1795623372.553, 1795623382.6948016}, {std::nan(""), 1}}}, all, 0,
         "Seconds Before Newest,Record Time,\"say \"\"hi\"\"\"\n-10.141802,1795623372.553,nan\n0,1795623382.6948016,1\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ChartCsv(row.series, row.from, row.to), row.csv) << row.csv;
    // The wide scan's table: as far as the shortest column, floats at their own precision.
    EXPECT_EQ(ColumnsCsv({"Temp (C)", "Sample", "Reference"}, {{2.1f, 2.15f}, {0.1f, 0.2f, 0.3f}, {1, 2}}),
              "Temp (C),Sample,Reference\n2.1,0.1,1\n2.15,0.2,2\n");
}

TEST(WindowLayout, ReadsWhatItWritesAndSaysWhereAFileIsWrong)
{
    WindowLayout layout;
    layout.windows.push_back({"tower-ch4", "tolvan", "fe80::1%4", 4410, {10, -20, 750, 800},
                              {{"Tolvan Data", 300, {5, 6, 700, 350},
                                {{"tower-ch4:DATA:CH4", false}, {"leaf:DATA:CO2", true}}}}});
    layout.windows.push_back({"leaf", "dravik", "", 0, {}, {}});
    EXPECT_EQ(WindowLayout::Read(layout.Write()), layout);
    EXPECT_EQ(SplitTarget("fe80::1%4:4410"), std::make_pair(std::string("fe80::1%4"), 4410));
    EXPECT_EQ(SplitTarget(""), std::make_pair(std::string(), 0));
    EXPECT_EQ(SplitScope("fe80::1%4"), std::make_pair(std::string("fe80::1"), 4));
    EXPECT_EQ(SplitScope("127.0.0.1"), std::make_pair(std::string("127.0.0.1"), 0));

    // What may be left out takes its default.
    const WindowLayout least = WindowLayout::Read(
        R"({"windows": [{"name": "a", "model": "halden", "charts": [{"variables": [{"variable": "a:DATA:F"}]}]}]})");
    ASSERT_EQ(least.windows.size(), 1u);
    EXPECT_EQ(least.windows[0].port, 0);
    EXPECT_EQ(least.windows[0].charts.at(0).width, 60);
    EXPECT_FALSE(least.windows[0].charts[0].variables.at(0).right);

    const struct {
        const char* text;
        const char* error;
    } bad[] = {
        {"", "not JSON: * Line 1, Column 1"},
        {"{\"windows\": [", "not JSON: "},
        {"[]", "the file: must be a JSON object"},
        {"{\"window\": []}", "windows: missing: the file holds no layout"},
        {"{\"windows\": {}}", "windows: must be an array"},
        {"{\"windows\": [{\"model\": \"tolvan\"}]}", "windows[0].name: must be a text that is not empty"},
        {"{\"windows\": [{\"name\": \"a\", \"model\": \"tolvan\", \"port\": 70000}]}",
         "windows[0].port: must be a whole number from 0 to 65535"},
        {"{\"windows\": [{\"name\": \"a\", \"model\": \"tolvan\", \"geometry\": {\"width\": \"big\"}}]}",
         "windows[0].geometry.width: must be a whole number from 0 to 2147483647"},
        {"{\"windows\": [{\"name\": \"a\", \"model\": \"tolvan\", \"charts\": [{\"width\": 0}]}]}",
         "windows[0].charts[0].width: must be a number of seconds above 0"},
        {"{\"windows\": [{\"name\": \"a\", \"model\": \"tolvan\", \"charts\": [{\"variables\": [{\"variable\": "
         "\"a:DATA:X\", \"axis\": \"up\"}]}]}]}",
         "windows[0].charts[0].variables[0].axis: must be \"left\" or \"right\""},
    };
    for (const auto& row : bad) {
        try {
            WindowLayout::Read(row.text);
            ADD_FAILURE() << "read: " << row.text;
        } catch (const WindowLayout::Error& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, strlen(row.error)), row.error) << error.what();
        }
    }
}

TEST(PlotExport, TheVisibleDataAndImagesOfAChartAsTheUserSeesIt)
{
    const std::string host = test_host();
    const auto connector = Connector::Factory(nullptr, host, "tolvan");
    auto* chart = PlotDialog::Open(nullptr, {"Chart", 10, {20, 30, 900, 700}, {{host + ":DATA:CH4", true}}});
    const ChartLayout layout = chart->Layout();
    EXPECT_EQ(layout.width, 10);
    EXPECT_EQ(layout.geometry, (WindowGeometry{20, 30, 900, 700}));
    EXPECT_EQ(layout.variables, (std::vector<ChartVariable>{{host + ":DATA:CH4", true}}));
    for (int t = 0; t <= 100; ++t)
        chart->Variables().front()->_AddData(t, t * 0.5);
    chart->Plot()->replot();
    const std::string visible = chart->CsvText(true), all = chart->CsvText(false);
    EXPECT_EQ(std::count(visible.begin(), visible.end(), '\n'), 1 + 11) << visible;
    EXPECT_EQ(visible.substr(visible.find("\n-10,") + 1, 10), "-10,90,45\n");
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 1 + 101);

    QTemporaryDir directory;
    const struct {
        const char* file;
        QByteArray start;
    } images[] = {{"chart.png", "\x89PNG"}, {"chart.svg", "<?xml"}, {"chart.pdf", "%PDF"}};
    for (const auto& image : images) {
        const QString path = directory.filePath(image.file);
        ASSERT_TRUE(RenderPlotImage(chart->Plot(), path, QSize(800, 400))) << image.file;
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.readAll().startsWith(image.start)) << image.file;
    }
    EXPECT_EQ(QImage(directory.filePath("chart.png")).size(), QSize(800, 400));
    for (const char* file : {"none/chart.png", "none/chart.svg", "none/chart.pdf"})
        EXPECT_FALSE(RenderPlotImage(chart->Plot(), directory.filePath(file), QSize(80, 40))) << file;
    delete chart;
}

}  // namespace
