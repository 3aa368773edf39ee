#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "libskarn/docmorvik.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

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
    reset_zones();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        DocMorvik doc;
        doc._set_changed(false);
        EXPECT_EQ(reply(doc, row.message), row.reply);
        EXPECT_FALSE(doc.has_changed());
        EXPECT_EQ(reply(doc, "<arvex>&query;</arvex>"), golden("morvik_query.txt"));
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
