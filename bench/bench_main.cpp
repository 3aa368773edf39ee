#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bench/logd_bench.h"
#include "bench/many_instruments.h"
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

// Takes the bench's own flags out of argv: --many=1,10,50,100 (or none), --many_seconds=S,
// --many_port=P, --logd=1,10,100 (default none), --logd_seconds=S.
ManyOptions many_options(int& argc, char** argv, LogdOptions& logd)
{
    ManyOptions options;
    options.sim = SONDAR_SIM;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (std::strncmp(arg, "--many=", 7) == 0) {
            options.counts.clear();
            std::istringstream list(arg + 7);
            for (std::string item; std::getline(list, item, ',');)
                if (item != "none")
                    options.counts.push_back(std::atoi(item.c_str()));
        } else if (std::strncmp(arg, "--many_seconds=", 15) == 0) {
            options.seconds = std::atof(arg + 15);
        } else if (std::strncmp(arg, "--many_port=", 12) == 0) {
            options.first_port = std::atoi(arg + 12);
        } else if (std::strncmp(arg, "--logd=", 7) == 0) {
            std::istringstream list(arg + 7);
            for (std::string item; std::getline(list, item, ',');)
                logd.counts.push_back(std::atoi(item.c_str()));
        } else if (std::strncmp(arg, "--logd_seconds=", 15) == 0) {
            logd.seconds = std::atof(arg + 15);
        } else {
            argv[kept++] = argv[i];
        }
    }
    argc = kept;
    return options;
}

}  // namespace

int main(int argc, char** argv)
{
    LogdOptions logd;
    logd.sim = SONDAR_SIM;
    logd.logd = SONDAR_LOGD;
    const ManyOptions many = many_options(argc, argv, logd);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    // First, while the process holds nothing else: the other benchmarks leave memory behind that
    // the allocator keeps, which would count as the connectors' resident set.
    if (!many.counts.empty())
        RunManyInstruments(many);
    if (!logd.counts.empty())
        RunLogdBench(logd);
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
