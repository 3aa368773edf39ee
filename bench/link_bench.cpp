// HandleData on a realistic 30-field DATA line, beside a bare baseline that only splits the same
// line and parses its fields.

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "bench/ratio.h"
#include "link/connector.h"

namespace {

constexpr int FIELDS = 30;

std::string header_line()
{
    std::string line = "DATAH\tSECONDS\tNANOSECONDS";
    for (int i = 2; i < FIELDS - 1; ++i)
        line += "\tFIELD" + std::to_string(i);
    return line + "\tCHK\n";
}

std::string data_line()
{
    std::string line = "DATA\t1479427135\t250000000";
    for (int i = 2; i < FIELDS - 1; ++i)
        line += "\t" + std::to_string(1.8 + i * 0.0137).substr(0, 8);
    line += "\t";
    unsigned sum = 0;
    for (unsigned char c : line)
        sum += c;
    char digits[4];
    std::snprintf(digits, sizeof digits, "%03u", sum & 0xff);
    return line + digits + "\n";
}

void BM_HandleData(benchmark::State& state)
{
    Connector connector(nullptr, "bench", "tolvan");
    connector.HandleData(header_line());
    const std::string line = data_line();
    for (auto _ : state)
        connector.HandleData(line);
    if (connector.VarNumeric("bench:DATA:FIELD2") == 0)
        state.SkipWithError("the line was not taken");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_HandleData);

void BM_SplitAndParseBaseline(benchmark::State& state)
{
    const std::string line = data_line();
    std::vector<double> values(FIELDS);
    for (auto _ : state) {
        std::string_view rest(line);
        size_t n = 0;
        while (!rest.empty()) {
            const size_t start = rest.find_first_not_of(" \t\r\n");
            if (start == std::string_view::npos)
                break;
            rest.remove_prefix(start);
            const size_t end = std::min(rest.find_first_of(" \t\r\n"), rest.size());
            if (n > 0)
                std::from_chars(rest.data(), rest.data() + end, values[(n - 1) % FIELDS]);
            ++n;
            rest.remove_prefix(end);
        }
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SplitAndParseBaseline);

const bool registered = RegisterRatio("HandleData / split-and-parse baseline", "BM_HandleData",
                                      "BM_SplitAndParseBaseline");

}  // namespace
