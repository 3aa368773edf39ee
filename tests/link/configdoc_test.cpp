// The description file and its defines.

#include "link/configdoc.h"

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

}  // namespace
