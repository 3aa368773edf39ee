#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bench/ratio.h"

std::vector<Ratio>& ratios()
{
    static std::vector<Ratio> list;
    return list;
}

namespace {

// Console output as usual; the CPU time per iteration is kept for the ratios, since other work on
// the machine stretches wall time but not CPU time. With repetitions the median counts.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> times;

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& r : runs) {
            if (r.error_occurred)
                continue;
            if (r.run_type == Run::RT_Iteration && !medians.count(r.run_name.str()))
                times[r.run_name.str()] = r.GetAdjustedCPUTime();
            if (r.run_type == Run::RT_Aggregate && r.aggregate_name == "median") {
                times[r.run_name.str()] = r.GetAdjustedCPUTime();
                medians.insert(r.run_name.str());
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

private:
    std::set<std::string> medians;
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
