// What the program is told on its command line.

#include "app/commandline.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

struct Row {
    std::vector<std::string> args;  // after the program name
    CommandLine::Mode mode;
    std::string name, address;
    int port;
};

TEST(CommandLine, Table) {
    const auto MAIN = CommandLine::MAIN;
    const auto BROWSE = CommandLine::CAL_BROWSE;
    const auto DIAL = CommandLine::CAL_DIAL;
    const Row rows[] = {
        {{}, MAIN, "", "", 0},
        {{"cal"}, MAIN, "", "", 0},                                  // no name behind it
        {{"cal", ""}, MAIN, "", "", 0},
        {{"cal", "", "127.0.0.1", "4410"}, MAIN, "", "", 0},         // an empty name wins over the rest
        {{"Cal", "X"}, MAIN, "", "", 0},                             // case counts
        {{"cal ", "X"}, MAIN, "", "", 0},
        {{"X", "cal", "Y"}, MAIN, "", "", 0},                        // only as the first argument
        {{"cal", "X"}, BROWSE, "X", "", 0},
        {{"cal", "X", "Y"}, BROWSE, "X", "", 0},                     // a lone address is ignored
        {{"cal", "X", "Y", "notanumber"}, BROWSE, "X", "", 0},
        {{"cal", "X", "Y", ""}, BROWSE, "X", "", 0},
        {{"cal", "X", "Y", "0"}, BROWSE, "X", "", 0},
        {{"cal", "X", "Y", "0x10"}, BROWSE, "X", "", 0},             // decimal: reads 0
        {{"cal", "X", "Y", "99999999999"}, BROWSE, "X", "", 0},      // out of int range
        {{"cal", "X", "", "4410"}, BROWSE, "X", "", 0},
        {{"cal", "X", "Y", "123abc"}, DIAL, "X", "Y", 123},          // trailing text ignored
        {{"cal", "X", "Y", " \t4410"}, DIAL, "X", "Y", 4410},        // leading blanks skipped
        {{"cal", "X", "Y", "+80"}, DIAL, "X", "Y", 80},
        {{"cal", "X", "Y", "70000"}, DIAL, "X", "Y", 70000},         // cut to 16 bits only when dialled
        {{"cal", "X", "Y", "-1"}, DIAL, "X", "Y", -1},
        {{"cal", "X", "fe80::1", "4410", "extra", "more"}, DIAL, "X", "fe80::1", 4410},
        {{"cal", "My Tolvan", "127.0.0.1", "4410"}, DIAL, "My Tolvan", "127.0.0.1", 4410},
        {{"cal", "X", "--instrument", "a=tolvan@1.2.3.4"}, BROWSE, "X", "", 0},  // not read here
    };
    for (const Row& r : rows) {
        std::vector<std::string> args{"/opt/arvex/sondar"};
        args.insert(args.end(), r.args.begin(), r.args.end());
        std::string shown;
        for (const std::string& a : r.args)
            shown += "[" + a + "]";
        const CommandLine c = ParseCommandLine(args);
        EXPECT_EQ(c.mode, r.mode) << shown;
        EXPECT_EQ(c.name, r.name) << shown;
        EXPECT_EQ(c.address, r.address) << shown;
        EXPECT_EQ(c.port, r.port) << shown;
    }
    EXPECT_EQ(ParseCommandLine({}).mode, CommandLine::MAIN);  // not even the program's name
}

// Each row gives its instruments as "name|model|address|scope|port;", its errors and its layout.
TEST(CommandLine, InstrumentsNamedByHand) {
    const std::string models = " (one of tolvan, morvik, sarnel, halden, dravik, quenta, bremmel, ostrel)";
    const struct {
        std::vector<std::string> args;  // after the program name
        std::string expected;
    } rows[] = {
        {{"--instrument", "lab=tolvan@10.0.0.5:4411", "--status"}, "lab|tolvan|10.0.0.5|0|4411;status"},
        {{"--instrument", "b=bremmel@127.0.0.1", "-x", "--instrument", "o=ostrel@127.0.0.1"},
         "b|bremmel|127.0.0.1|0|50111;o|ostrel|127.0.0.1|0|4460;"},  // the model's usual port
        {{"--instrument", "v6=halden@[fe80::1%3]:4431"}, "v6|halden|fe80::1|3|4431;"},
        {{"cal", "", "--instrument", "s=sarnel@[::1]"}, "s|sarnel|::1|0|4420;"},
        {{"--instrument", "a=Tolvan@1", "--instrument", "q=quenta@1.2.3.4"},
         "q|quenta|1.2.3.4|0|4450;--instrument \"a=Tolvan@1\": unknown model \"Tolvan\"" + models},
        {{"--instrument", "a=tolvan@1.2.3.4:65536"},
         "--instrument \"a=tolvan@1.2.3.4:65536\": port \"65536\" is not a number from 1 to 65535"},
        {{"--instrument", "a=tolvan@::1"},
         "--instrument \"a=tolvan@::1\": an IPv6 address goes in brackets: [ADDRESS]:PORT"},
        {{"--instrument", "a=tolvan@lab"},
         "--instrument \"a=tolvan@lab\": \"lab\" is not a numeric IPv4 or IPv6 address"},
        {{"--instrument", "a=tolvan"}, "--instrument \"a=tolvan\": the form is NAME=MODEL@ADDRESS[:PORT]"},
        {{"--instrument"}, "--instrument: NAME=MODEL@ADDRESS[:PORT] must follow"},
        {{"--layout", "a.json", "--instrument", "b=bremmel@127.0.0.1", "--layout", "--instrument"},
         "b|bremmel|127.0.0.1|0|50111;layout --instrument"},  // the last one, whatever it reads
        {{"--layout"}, "--layout: FILE must follow"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> args{"sondar"};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const CommandLine c = ParseCommandLine(args);
        std::ostringstream got;
        for (const NamedInstrument& i : c.instruments)
            got << i.name << "|" << i.model << "|" << i.address << "|" << i.address.Scope() << "|" << i.address.Port()
                << ";";
        for (const std::string& error : c.errors)
            got << error;
        if (!c.layout.empty())
            got << "layout " << c.layout;
        got << (c.status ? "status" : "");
        EXPECT_EQ(got.str(), row.expected);
    }
}

}  // namespace
