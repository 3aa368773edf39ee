// HandleData on a realistic 30-field DATA line, beside a bare baseline that only checks, splits and
// parses the same line; and the splitting of a long backlog into lines.

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <charconv>
#include <cstring>
#include <string>

#include "bench/ratio.h"
#include "sim/data_line.h"
#include "link/connector.h"
#include "link/delimparser.h"

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
    return with_sum(line + "\t");
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

// The least that taking the line needs: its checksum, its tab-separated fields found with memchr
// and converted with from_chars into a fixed array. No names, no texts kept, no listeners.
void BM_SplitAndParseBaseline(benchmark::State& state)
{
    const std::string line = data_line();
    double values[FIELDS] = {};
    for (auto _ : state) {
        const char* p = line.data();
        const char* end = p + line.size() - 1;  // the line feed
        unsigned sum = 0;
        for (const char* q = p; q < end - 3; ++q)
            sum += static_cast<unsigned char>(*q);
        unsigned written = 0;
        std::from_chars(end - 3, end, written);
        if (written != (sum & 0xff)) {
            state.SkipWithError("bad checksum");
            break;
        }
        p = static_cast<const char*>(std::memchr(p, '\t', size_t(end - p))) + 1;  // past the record name
        for (int n = 0; n < FIELDS && p < end; ++n) {
            const char* tab = static_cast<const char*>(std::memchr(p, '\t', size_t(end - p)));
            const char* stop = tab ? tab : end;
            std::from_chars(p, stop, values[n]);
            p = stop + 1;
        }
        benchmark::DoNotOptimize(values);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SplitAndParseBaseline);

// A backlog of 10 000 lines that arrived in one piece, as after a wide scan, split into lines.
void BM_SplitBacklog(benchmark::State& state)
{
    constexpr int LINES = 10000;
    const std::string line = data_line();
    std::string backlog;
    for (int i = 0; i < LINES; ++i)
        backlog += line;
    std::string out;
    for (auto _ : state) {
        DelimParser parser;
        parser.AppendRawData(backlog);
        int taken = 0;
        while (parser.GetNextStringToEOL(out))
            ++taken;
        if (taken != LINES) {
            state.SkipWithError("lines lost");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK(BM_SplitBacklog);

const bool registered = RegisterRatio("HandleData / checksum, split and parse baseline", "BM_HandleData",
                                      "BM_SplitAndParseBaseline");

}  // namespace
