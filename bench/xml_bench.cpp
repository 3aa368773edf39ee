#include "xml/xml_parser.h"

#include "bench/ratio.h"
#include "bench/viewbuf.h"

#include <benchmark/benchmark.h>

#ifdef SONDAR_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

#include <cstdint>
#include <istream>
#include <sstream>
#include <string>

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

const bool registered = RegisterRatio("XMLParser / pugixml, one 5 KB message", "BM_XMLParser", "BM_Pugixml");

}  // namespace
