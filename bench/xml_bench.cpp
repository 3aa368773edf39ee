#include "xml/xml_parser.h"

#include <benchmark/benchmark.h>

#ifdef SONDAR_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

#include <cstdint>
#include <cstdio>
#include <istream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

// One Tolvan reply line of about 5 KB: nested sections, many numeric leaves,
// attributes on some of them.
std::string make_message()
{
    std::ostringstream os;
    os << "<arvex><tolvan model=\"tolvan\" ver=\"2.4.1\"><cfg>";
    const char* sections[] = {"heater", "laser", "cell", "pump", "flow", "detector", "valve"};
    const char* parts[] = {"top", "bottom", "inlet", "outlet"};
    int n = 0;
    for (const char* s : sections) {
        os << '<' << s << " enabled=\"true\">";
        for (const char* p : parts) {
            os << '<' << p << '>';
            os << "<heaterpower>" << 12.5 + n << "</heaterpower>";
            os << "<setpoint units=\"C\" min='0' max='80'>" << 45.25 - n * 0.5 << "</setpoint>";
            os << "<temperature>" << 44.987 + n * 0.01 << "</temperature>";
            os << "<gain>" << 0.00123 * (n + 1) << "</gain>";
            os << "<mode>auto</mode>";
            os << "<offset/>";
            os << '<' << '/' << p << '>';
            ++n;
        }
        os << "</" << s << '>';
    }
    os << "</cfg><status code=\"0\">ok</status></tolvan></arvex>";
    return os.str();
}

const std::string& message()
{
    static const std::string m = make_message();
    return m;
}

// A read-only stream buffer over the message, so that the loop times the
// tokenizer and not the copy into a string stream.
class ViewBuf : public std::streambuf {
public:
    explicit ViewBuf(const std::string& s)
    {
        char* p = const_cast<char*>(s.data());
        setg(p, p, p + s.size());
    }
};

void BM_XMLParser(benchmark::State& state)
{
    const std::string& m = message();
    for (auto _ : state) {
        ViewBuf buf(m);
        std::istream is(&buf);
        XMLParser parser(is);
        XMLParser::TokenType t;
        while ((t = parser.GetNextToken()) != XMLParser::END_DOC && t != XMLParser::ERROR) {
        }
        if (t == XMLParser::ERROR) {
            state.SkipWithError("the message does not tokenize");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * m.size()));
}
BENCHMARK(BM_XMLParser);

#ifdef SONDAR_BENCH_PUGIXML
void BM_Pugixml(benchmark::State& state)
{
    const std::string& m = message();
    for (auto _ : state) {
        pugi::xml_document doc;
        if (!doc.load_buffer(m.data(), m.size())) {
            state.SkipWithError("pugixml rejects the message");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * m.size()));
}
BENCHMARK(BM_Pugixml);
#endif

// Console output as usual; the time per iteration is kept for the ratio.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> times; // per iteration, in the run's time unit

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& r : runs) {
            if (!r.error_occurred)
                times[r.benchmark_name()] = r.GetAdjustedRealTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    std::printf("message: %zu bytes\n", message().size());
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const auto ours = reporter.times.find("BM_XMLParser");
    const auto pugi = reporter.times.find("BM_Pugixml");
    if (ours != reporter.times.end() && pugi != reporter.times.end())
        std::printf("XMLParser / pugixml time ratio: %.2f\n", ours->second / pugi->second);
    benchmark::Shutdown();
    return 0;
}
