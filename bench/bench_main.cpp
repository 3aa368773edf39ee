#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench/ratio.h"

std::vector<Ratio>& ratios()
{
    static std::vector<Ratio> list;
    return list;
}

namespace {

// Console output as usual; the time per iteration is kept for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> times;

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& r : runs)
            if (!r.error_occurred)
                times[r.benchmark_name()] = r.GetAdjustedRealTime();
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const Ratio& r : ratios()) {
        auto ours = reporter.times.find(r.ours), reference = reporter.times.find(r.reference);
        if (ours != reporter.times.end() && reference != reporter.times.end())
            std::printf("%-45s %.2f\n", (r.label + ":").c_str(), ours->second / reference->second);
    }
    benchmark::Shutdown();
    return 0;
}
