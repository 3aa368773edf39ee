#include "app/commandline.h"

#include <gtest/gtest.h>

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
}

TEST(CommandLine, NoArgumentsAtAll) {
    EXPECT_EQ(ParseCommandLine({}).mode, CommandLine::MAIN);
}

}  // namespace
