#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "libskarn/docmorvik.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

TEST(Morvik, FreshDocumentMatchesGoldenReplies)
{
    reset_zones();
    DocMorvik doc;
    EXPECT_EQ(reply(doc, "<arvex>&query;</arvex>"), golden("morvik_query.txt"));
    EXPECT_EQ(reply(doc, "<arvex>&query_doctype;</arvex>"), golden("morvik_doctype.txt"));
}

TEST(Morvik, AckAndError)
{
    DocMorvik doc;
    std::ostringstream ack, error;
    Configurable::set_compact(ack, true);
    Configurable::set_compact(error, true);
    doc.Ack(ack);
    EXPECT_EQ(ack.str(), "<arvex><morvik><ack>true</ack></morvik></arvex>");
    doc.Error(error, "no such thing");
    EXPECT_EQ(error.str(), "<arvex><morvik><error>no such thing</error></morvik></arvex>");
    EXPECT_EQ(reply(doc, "<arvex><morvik>&query;</morvik></arvex>").find("<error>"), std::string::npos);
}

TEST(Morvik, MessagesThatChangeNothing)
{
    struct Row {
        const char* message;
        const char* reply;
    } rows[] = {
        // A Sarnel link still speaks "morvik"; the other model tag is unknown.
        {"<arvex><sarnel><name>x</name></sarnel></arvex>", ""},
        {"<arvex><tolvan><name>x</name></tolvan></arvex>", ""},
        // A Morvik has no cpld on the wire, though the object exists.
        {"<arvex><morvik><cpld><ver>1.2</ver></cpld></morvik></arvex>", ""},
        {"<arvex><morvik><output><rate>2</rate></output></morvik></arvex>", ""},
        {"<arvex><morvik><ack>false</ack><error>oops</error></morvik></arvex>", ""},
        {"<arvex><morvik><serialnumber>ch4-base-0001</serialnumber></morvik></arvex>", ""},
        {"<sarnel><morvik><name>x</name></morvik></sarnel>", "<Error Param=\"arvex\">Invalid start element: sarnel</Error>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        DocMorvik doc;
        doc._set_changed(false);
        EXPECT_EQ(reply(doc, row.message), row.reply);
        EXPECT_FALSE(doc.has_changed());
        EXPECT_EQ(doc.Conf().Name().get(), "");
        EXPECT_EQ(doc.Conf().Cpld().Ver().get(), "");
        EXPECT_TRUE(doc.Conf().Ack().get());
        EXPECT_EQ(doc.Conf().Error().get(), "");
        EXPECT_EQ(doc.Conf().Factory().Serialnumber().get(), "ch4-base-XXXX");
    }
}

TEST(Morvik, SerialNumberIsReadThroughTheFactorySection)
{
    DocMorvik doc;
    EXPECT_EQ(reply(doc, "<arvex><morvik><serialnumber>&query;</serialnumber></morvik></arvex>"),
              "<arvex><morvik><serialnumber>ch4-base-XXXX</serialnumber></morvik></arvex>");
    reply(doc, "<arvex><morvik><factory><serialnumber>ch4-base-0042</serialnumber></factory></morvik></arvex>");
    EXPECT_EQ(reply(doc, "<arvex><morvik><serialnumber>&query;</serialnumber></morvik></arvex>"),
              "<arvex><morvik><serialnumber>ch4-base-0042</serialnumber></morvik></arvex>");
}

TEST(Morvik, CommandLinesOfTheDialogs)
{
    struct Row {
        const char* line;
        ConfigurableBool& (*command)(DocMorvik&);
    } rows[] = {
        {"<arvex><morvik><cmd><reboot>true</reboot></cmd></morvik></arvex>\n",
         [](DocMorvik& d) -> ConfigurableBool& { return d.Conf().Cmd().Reboot(); }},
        {"<arvex><morvik><factory><cmd><commit>true</commit></cmd></factory></morvik></arvex>\n",
         [](DocMorvik& d) -> ConfigurableBool& { return d.Conf().Factory().Cmd().Commit(); }},
        {"<arvex><morvik><factory><cmd><rollback>true</rollback></cmd></factory></morvik></arvex>\n",
         [](DocMorvik& d) -> ConfigurableBool& { return d.Conf().Factory().Cmd().Rollback(); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        DocMorvik doc;
        doc._set_changed(false);
        EXPECT_EQ(reply(doc, row.line), "");
        EXPECT_TRUE(row.command(doc).get());
        // The replica's changes are exactly the command: what the instrument would act on.
        std::ostringstream changes;
        Configurable::set_compact(changes, true);
        doc.changed(changes);
        std::string expected = row.line;
        expected.pop_back();
        EXPECT_EQ(changes.str(), expected);
    }
}

TEST(Morvik, NetworkDialogSendsOnlyWhatItChanged)
{
    DocMorvik doc;
    doc._set_changed(false);
    ConfigCfgNetwork& network = doc.Conf().Cfg().Network();
    network.Name().set("ch4-xxxx");
    network.Configuration().set(1);
    network.Ipaddress().set(SocketAddress("192.168.1.95"));
    network.Netmask().set(SocketAddress("255.255.0.0"));
    network.Gateway().set(SocketAddress("192.168.1.1"));
    std::ostringstream changes;
    Configurable::set_compact(changes, true);
    doc.changed(changes);
    EXPECT_EQ(changes.str(),
              "<arvex><morvik><cfg><network><configuration>manual</configuration><netmask>255.255.0.0</netmask>"
              "</network></cfg></morvik></arvex>");
}

}  // namespace
