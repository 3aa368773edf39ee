// Applying a whole document message to a tree of about 200 leaves, and answering &query; with
// it, beside pugixml parsing the same bytes.

#include <benchmark/benchmark.h>

#ifdef SONDAR_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bench/ratio.h"
#include "bench/viewbuf.h"
#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"

namespace {

constexpr int SECTIONS = 10, LEAVES = 20;

const std::vector<std::string>& modes()
{
    static const std::vector<std::string> list{"auto", "manual", "off"};
    return list;
}

// Sections of floats, integers, bools, strings and choices, in turn.
struct BenchTree : ConfigurableComposite {
    std::vector<std::unique_ptr<Configurable>> nodes;

    BenchTree() : ConfigurableComposite("arvex")
    {
        for (int s = 0; s < SECTIONS; ++s) {
            auto section = std::make_unique<ConfigurableComposite>("section" + std::to_string(s));
            for (int l = 0; l < LEAVES; ++l) {
                const std::string name = "leaf" + std::to_string(l);
                std::unique_ptr<Configurable> leaf;
                switch (l % 5) {
                case 0: leaf = std::make_unique<ConfigurableFloat>(name, 1.5f, 0.0f, 100.0f, false); break;
                case 1: leaf = std::make_unique<ConfigurableInteger>(name, 10, 0, 100000); break;
                case 2: leaf = std::make_unique<ConfigurableBool>(name, false); break;
                case 3: leaf = std::make_unique<ConfigurableString>(name, "label"); break;
                default: leaf = std::make_unique<ConfigurableMultipleChoice>(name, modes(), 0); break;
                }
                section->add(*leaf);
                nodes.push_back(std::move(leaf));
            }
            add(*section);
            nodes.push_back(std::move(section));
        }
        _set_changed(false);
    }
};

// A message that sets every leaf; the two variants differ in every value.
std::string set_all_message(int variant)
{
    std::ostringstream out;
    out << "<arvex>";
    for (int s = 0; s < SECTIONS; ++s) {
        out << "<section" << s << '>';
        for (int l = 0; l < LEAVES; ++l) {
            out << "<leaf" << l << '>';
            switch (l % 5) {
            case 0: out << (variant ? 12.3456 : 65.4321) + s; break;
            case 1: out << (variant ? 1234 : 4321) + l; break;
            case 2: out << (variant ? "true" : "false"); break;
            case 3: out << (variant ? "heater top" : "heater bottom"); break;
            default: out << (variant ? "manual" : "auto"); break;
            }
            out << "</leaf" << l << '>';
        }
        out << "</section" << s << '>';
    }
    out << "</arvex>";
    return out.str();
}

const std::string& message(int variant)
{
    static const std::string messages[2] = {set_all_message(0), set_all_message(1)};
    return messages[variant];
}

std::string query_reply()
{
    BenchTree tree;
    std::istringstream in("<arvex>&query;</arvex>");
    std::ostringstream out;
    Configurable::set_compact(out, true);
    tree.configure(in, out);
    return out.str();
}

const std::string& reply()
{
    static const std::string text = query_reply();
    return text;
}

void BM_ConfigureMessage(benchmark::State& state)
{
    BenchTree tree;
    std::ostringstream out;
    Configurable::set_compact(out, true);
    int variant = 0;
    for (auto _ : state) {
        ViewBuf buf(message(variant));
        std::istream in(&buf);
        tree.configure(in, out);
        tree._set_changed(false);
        variant ^= 1;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * message(0).size()));
    state.counters["bytes"] = double(message(0).size());
}
BENCHMARK(BM_ConfigureMessage);

void BM_QueryReply(benchmark::State& state)
{
    BenchTree tree;
    const std::string query = "<arvex>&query;</arvex>";
    std::string text;
    for (auto _ : state) {
        ViewBuf buf(query);
        std::istream in(&buf);
        std::ostringstream out;
        Configurable::set_compact(out, true);
        tree.configure(in, out);
        text = out.str();
        benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * reply().size()));
    state.counters["bytes"] = double(reply().size());
}
BENCHMARK(BM_QueryReply);

#ifdef SONDAR_BENCH_PUGIXML
void pugixml_parse(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        pugi::xml_document doc;
        if (!doc.load_buffer(text.data(), text.size())) {
            state.SkipWithError("pugixml rejects the text");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_PugixmlMessage(benchmark::State& state) { pugixml_parse(state, message(0)); }
BENCHMARK(BM_PugixmlMessage);

void BM_PugixmlReply(benchmark::State& state) { pugixml_parse(state, reply()); }
BENCHMARK(BM_PugixmlReply);
#endif

const bool registered = RegisterRatio("configure(message) / pugixml parse of it", "BM_ConfigureMessage",
                                      "BM_PugixmlMessage") &&
                        RegisterRatio("&query; reply / pugixml parse of the reply", "BM_QueryReply",
                                      "BM_PugixmlReply");

}  // namespace
