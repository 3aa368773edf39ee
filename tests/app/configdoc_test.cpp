// What the program is told: the description file, its defines, and the command line.

#include "app/commandline.h"
#include "app/configdoc.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

// Reads one description file; the replies of the reading come back in `replies`.
void Read(ConfigDoc& doc, const std::string& xml, std::string* replies = nullptr)
{
    std::istringstream in(xml);
    std::ostringstream out;
    doc.configure(in, out);
    if (replies)
        *replies = out.str();
}

Defines Make(std::initializer_list<std::pair<const char*, const char*>> pairs)
{
    Defines defines;
    for (const auto& pair : pairs)
        defines.Add(pair.first, pair.second);
    return defines;
}

TEST(ConfigDoc, EverythingOfAFullFile)
{
    ConfigDoc doc;
    std::string replies;
    Read(doc,
         "<config>\n"
         "  <title>Arvex Sondar</title>\n"
         "  <description>read, not shown</description>\n"
         "  <services><service>_arvex-tolvan._tcp</service><x>_arvex-halden._tcp</x></services>\n"
         "  <defines><define><name>ip</name><value>file</value></define>"
         "<define><name>ip</name><value>second</value></define>"
         "<define><name>ver</name><value>0.0.22</value></define></defines>\n"
         "  <buttons>\n"
         "    <button service=\"tolvan morvik\" version=\"1.2\" uboot=\"u7\" standalone=\"yes\">\n"
         "      <caption>Flash to $(ver)</caption>\n"
         "      <cmds><cmd description=\"Erase\" runtime=\"30\" nofail=\"true\" nooutput=\"true\""
         " retrycount=\"2\" retrywait=\"5\">erase all</cmd><cmd>plain</cmd></cmds>\n"
         "    </button>\n"
         "    <button><caption>watch-tolvan</caption></button>\n"
         "  </buttons>\n"
         "</config>\n",
         &replies);
    EXPECT_EQ(replies.find("Error"), std::string::npos) << replies;
    EXPECT_EQ(doc.Title(), "Arvex Sondar");
    std::vector<std::string> services;
    doc.GetServices(services);
    EXPECT_EQ(services, (std::vector<std::string>{"_arvex-tolvan._tcp", "_arvex-halden._tcp"}));
    Defines defines;
    doc.GetDefines(defines);
    // A later define of the same name does not replace the first.
    EXPECT_EQ(defines.Map(), (std::map<std::string, std::string>{{"ip", "file"}, {"ver", "0.0.22"}}));

    std::vector<std::shared_ptr<ButtonConfig>> buttons;
    doc.GetButtons(buttons);
    ASSERT_EQ(buttons.size(), 2u);
    ButtonConfig& flash = *buttons[0];
    EXPECT_EQ(flash.service + "|" + flash.version + "|" + flash.uboot, "tolvan morvik|1.2|u7");
    EXPECT_TRUE(flash.standalone);
    ASSERT_EQ(flash.cmds.size(), 2u);
    // Attributes that were not given count as their defaults.
    const auto shown = [](const CmdConfig& c) {
        return c.cmd + "|" + c.description + "|" + std::to_string(c.runtime) + "|" + std::to_string(c.nofail) + "|" +
               std::to_string(c.nooutput) + "|" + std::to_string(c.retrycount) + "|" + std::to_string(c.retrywait);
    };
    EXPECT_EQ(shown(*flash.cmds[0]), "erase all|Erase|30|1|1|2|5");
    EXPECT_EQ(shown(*flash.cmds[1]), "plain||0|0|0|0|0");
    EXPECT_EQ(buttons[1]->service, "");
    EXPECT_FALSE(buttons[1]->standalone);
    EXPECT_TRUE(buttons[1]->cmds.empty());

    flash.ApplyDefines(defines);
    EXPECT_EQ(flash.caption, "Flash to 0.0.22");
    // The document keeps its own text: every Get builds afresh.
    std::vector<std::shared_ptr<ButtonConfig>> again;
    doc.GetButtons(again);
    EXPECT_EQ(again[0]->caption, "Flash to $(ver)");
}

TEST(ConfigDoc, BadValueIsReportedAndTheRestIsRead)
{
    ConfigDoc doc;
    std::string replies;
    Read(doc, "<config><title>T</title><buttons><button><caption>B</caption><cmds>"
              "<cmd nofail=\"yes\">x</cmd></cmds></button></buttons></config>",
         &replies);
    EXPECT_NE(replies.find("Error"), std::string::npos);
    EXPECT_EQ(doc.Title(), "T");
    std::vector<std::shared_ptr<ButtonConfig>> buttons;
    doc.GetButtons(buttons);
    ASSERT_EQ(buttons.size(), 1u);
    ASSERT_EQ(buttons[0]->cmds.size(), 1u);
    EXPECT_EQ(buttons[0]->cmds[0]->cmd, "x");
    EXPECT_FALSE(buttons[0]->cmds[0]->nofail);
}

TEST(Defines, ApplyAndJson)
{
    const Defines defines = Make({{"ver", "1"}, {"name", "ch4"}, {"a", "$(name)-$(ver)"}, {"", "EMPTY"}});
    const struct {
        const char* text;
        const char* applied;
    } rows[] = {
        {"$(missing)x", "x"},            // unknown names give nothing
        {"a$(ver", "a1"},                // an unclosed macro takes the rest of the text as its name
        {"$(ver", "1"},
        {"$(", "EMPTY"},                 // the empty name, unclosed
        {"x$()y", "xEMPTYy"},
        {"$(ver)$(ver)", "11"},
        {"v$(ver).$(name)!", "v1.ch4!"},
        {"$(a)", "ch4-1"},               // a value's macros are replaced in their turn
        {")$(ver)", ")1"},               // a ")" before the macro is no end of it
        {"$(ver$(name))", ")"},          // the name runs to the first ")": "ver$(name"
        {"$ (ver)", "$ (ver)"},
        {"$", "$"},
        {"", ""},
        {"plain text", "plain text"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(defines.Apply(row.text), row.applied) << row.text;

    // As JSON, for the helpers.
    const auto json = [](const Defines& d) {
        std::ostringstream out;
        out << d;
        return out.str();
    };
    EXPECT_EQ(json(Defines()), "null\n");
    EXPECT_EQ(json(Make({{"name", "ch4"}, {"ip", "fe80::1%2"}})), "{\"ip\":\"fe80::1%2\",\"name\":\"ch4\"}\n");
    EXPECT_EQ(json(Make({{"q", "say \"hi\"\\"}, {"nl", "a\nb"}})), "{\"nl\":\"a\\nb\",\"q\":\"say \\\"hi\\\"\\\\\"}\n");
}

// Buttons strip before applying, commands after: a value's line break stays in a caption only. A
// define that uses another resolves whichever of the two sorts first.
TEST(Defines, StrippingOrderAndDefinesOfDefines)
{
    Defines defines = Make({{"nl", "one\ntwo  three"}, {"ref", "$(nl)"}, {"a_first", "<$(z_last)>"},
                            {"m", "$(a_first)+$(z_last)"}, {"z_last", "$(zz)"}, {"zz", "deep"}});
    ButtonConfig button;
    button.caption = "a\t  $(ref)\n b";
    button.service = "tol\tvan  morvik";
    button.version = "$(nl)";
    auto command = std::make_shared<CmdConfig>();
    command->cmd = "flash\t $(ref)  now";
    command->description = "Step:\n$(nl)";
    button.cmds.push_back(command);

    button.ApplyDefines(defines);
    // ApplyDefines ran on the defines.
    EXPECT_EQ(defines.Map(), (std::map<std::string, std::string>{{"a_first", "<deep>"}, {"m", "<deep>+deep"},
                                                                 {"nl", "one\ntwo  three"}, {"ref", "one\ntwo  three"},
                                                                 {"z_last", "deep"}, {"zz", "deep"}}));
    EXPECT_EQ(button.caption, "a one\ntwo  three b");
    EXPECT_EQ(button.service, "tolvan morvik");
    EXPECT_EQ(button.version, "one\ntwo  three");
    EXPECT_EQ(command->cmd, "flash onetwo three now");
    EXPECT_EQ(command->description, "Step:onetwo three");
}

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

// Each row gives its instruments as "name|model|address|scope|port;" and its errors.
TEST(CommandLine, InstrumentsNamedByHand) {
    const std::string models = " (one of tolvan, morvik, sarnel, halden, dravik, quenta, bremmel, ostrel)";
    const struct {
        std::vector<std::string> args;  // after the program name
        std::string expected;
    } rows[] = {
        {{"--instrument", "lab=tolvan@10.0.0.5:4411"}, "lab|tolvan|10.0.0.5|0|4411;"},
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
        EXPECT_EQ(got.str(), row.expected);
    }
}

}  // namespace
