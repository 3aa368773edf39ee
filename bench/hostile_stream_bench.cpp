// Memory of a connector that is fed a hostile stream: a million lines, each with a record name or
// an event word never seen before. The tables of record kinds, last lines, texts and cells and the
// event lines grow with new names only up to the connector's bounds (MAX_LEARNED_RECORDS,
// MAX_EVENT_WORDS); this shows the heap flat beyond them: heap_MB for a thousand lines and for a
// million should be alike. Heap in use comes from mallinfo2, so run it in a build without
// sanitizers.

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "sim/data_line.h"
#include "link/connector.h"

namespace {

size_t heap_in_use()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

using LineMaker = std::function<std::string(long)>;

// range(0): the number of lines.
void feed(benchmark::State& state, const LineMaker& make)
{
    const long lines = state.range(0);
    for (auto _ : state) {
        state.PauseTiming();
        auto link = std::make_unique<Connector>(nullptr, "hostile", "tolvan");
        const size_t before = heap_in_use();
        state.ResumeTiming();
        for (long i = 0; i < lines; ++i)
            link->HandleData(make(i));
        state.PauseTiming();
        const double grown = double(heap_in_use()) - double(before);
        state.counters["heap_MB"] = grown / (1 << 20);
        state.counters["bytes_per_line"] = grown / double(lines);
        link.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * lines);
}

// New data record names with a good sum: kind, last line, an empty text and cell list each, up to
// the bound.
void BM_NewDataRecords(benchmark::State& state)
{
    feed(state, [](long i) { return with_sum("DATAX" + std::to_string(i) + "\t1\t2\t3\t"); });
}
BENCHMARK(BM_NewDataRecords)->Arg(1000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// The same with a bad sum: the kind is kept before the sum is looked at.
void BM_NewDataRecordsBadSum(benchmark::State& state)
{
    feed(state, [](long i) { return "DATAX" + std::to_string(i) + "\t1\t2\t3\t999\n"; });
}
BENCHMARK(BM_NewDataRecordsBadSum)->Arg(1000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// New headers of three fields: the header line, names, texts, cells and three numbers each.
void BM_NewHeaders(benchmark::State& state)
{
    feed(state, [](long i) { return "DATAX" + std::to_string(i) + "H\tA\tB\tC\n"; });
}
BENCHMARK(BM_NewHeaders)->Arg(1000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// New event words: one stored line each, up to the bound.
void BM_NewEventWords(benchmark::State& state)
{
    feed(state, [](long i) { return "DATAEVENT\tEV" + std::to_string(i) + "\tsomething happened\n"; });
}
BENCHMARK(BM_NewEventWords)->Arg(1000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// The reference: names that are not records are dropped and cost nothing.
void BM_UnknownNames(benchmark::State& state)
{
    feed(state, [](long i) { return "XDATA" + std::to_string(i) + "\t1\t2\t3\t000\n"; });
}
BENCHMARK(BM_UnknownNames)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// A well-behaved instrument: the same record again and again, after its header.
void BM_KnownRecord(benchmark::State& state)
{
    feed(state, [](long i) {
        return i == 0 ? std::string("DATAH\tSECONDS\tNANOSECONDS\tCH4\tCHK\n")
                      : with_sum("DATA\t" + std::to_string(i) + "\t0\t1.9\t");
    });
}
BENCHMARK(BM_KnownRecord)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
