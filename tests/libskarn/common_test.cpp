#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <ctime>
#include <memory>
#include <sstream>
#include <string>

#include "libskarn/configcommon.h"
#include "libskarn/docbremmel.h"
#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docmorvik.h"
#include "libskarn/docostrel.h"
#include "libskarn/docquenta.h"
#include "libskarn/doctolvan.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

std::string query(Configurable& node, const char* entity = "&query;")
{
    return reply(node, "<" + node.name() + ">" + entity + "</" + node.name() + ">");
}

/// A root holding the sections under test, as a model node would.
struct Root : ConfigurableComposite {
    ConfigCfgClock clock;
    ConfigCfgNetwork network;
    ConfigLightSource lightsource;
    ConfigurableComposite factory{"factory"};
    ConfigFactoryLightSource factory_lightsource;
    Root() : ConfigurableComposite("L")
    {
        factory.add(factory_lightsource);
        for (Configurable* section : std::initializer_list<Configurable*>{&clock, &network, &lightsource, &factory})
            add(*section);
    }
};

// --- every document ---

/// One instrument's document behind a common face.
struct Model {
    std::string file, tag;
    std::function<std::unique_ptr<ConfigurableComposite>()> make;
    std::function<bool(ConfigurableComposite&)> config_changed;
    std::function<std::string(ConfigurableComposite&, const std::string&)> serve;  // as the instrument does

    std::string query(ConfigurableComposite& doc, const std::string& path) const
    {
        return reply(doc, envelope(tag, wrap(path, "&query_item;")));
    }
};

/// A document known only by its replies.
template <class Doc>
Model plain(const std::string& file, const std::string& tag)
{
    return {file, tag, [] { return std::make_unique<Doc>(); }, nullptr, nullptr};
}

/// ... that is served as the instrument serves it.
template <class Doc>
Model served(const std::string& file, const std::string& tag)
{
    Model m = plain<Doc>(file, tag);
    m.serve = [](ConfigurableComposite& doc, const std::string& text) { return serve(static_cast<Doc&>(doc), text); };
    return m;
}

/// ... that knows whether its configuration changed.
template <class Doc>
Model model(const std::string& file, const std::string& tag)
{
    Model m = served<Doc>(file, tag);
    m.config_changed = [](ConfigurableComposite& doc) { return static_cast<Doc&>(doc).Conf().IsConfigChanged(); };
    return m;
}

const Model tolvan = model<DocTolvan>("tolvan", "tolvan"), morvik = plain<DocMorvik>("morvik", "morvik"),
            dravik = model<DocDravik>("dravik", "dravik"), quenta = model<DocQuenta>("quenta", "quenta"),
            halden = model<DocHalden>("halden", "halden"), bremmel = model<DocBremmel>("bremmel", "bremmel"),
            ostrel = served<DocOstrel>("ostrel", "ost");

TEST(Documents, FreshDocumentsMatchGoldenReplies)
{
    for (const Model* m : {&tolvan, &morvik, &dravik, &quenta, &halden, &bremmel, &ostrel}) {
        reset_zones();
        auto doc = m->make();
        const std::string query = golden(m->file + "_query.txt"), doctype = golden(m->file + "_doctype.txt");
        ASSERT_FALSE(query.empty() || doctype.empty()) << m->file;
        EXPECT_EQ(reply(*doc, "<arvex>&query;</arvex>"), query) << m->file;
        EXPECT_EQ(reply(*doc, "<arvex>&query_doctype;</arvex>"), doctype) << m->file;
    }
}

// Messages for another model, read-only values and commands leave a fresh document as it was.
TEST(Documents, MessagesThatChangeNothing)
{
    const struct {
        const Model* model;
        const char *message, *answer;
    } rows[] = {
        // A Sarnel link still speaks "morvik"; the other model tag is unknown.
        {&morvik, "<arvex><sarnel><name>x</name></sarnel></arvex>", ""},
        {&morvik, "<arvex><tolvan><name>x</name></tolvan></arvex>", ""},
        {&morvik, "<arvex><morvik><cpld><ver>1.2</ver></cpld></morvik></arvex>", ""},  // no cpld on the wire
        {&morvik, "<arvex><morvik><output><rate>2</rate></output></morvik></arvex>", ""},
        {&morvik, "<arvex><morvik><ack>false</ack><error>oops</error></morvik></arvex>", ""},
        {&morvik, "<arvex><morvik><serialnumber>ch4-base-0001</serialnumber></morvik></arvex>", ""},
        {&morvik, "<sarnel><morvik><name>x</name></morvik></sarnel>",
         "<Error Param=\"arvex\">Invalid start element: sarnel</Error>"},
        {&ostrel, "<arvex><ost><cmd><reboot>true</reboot></cmd></ost></arvex>", ""},  // commands go back to false
        {&ostrel, "<arvex><ost><ack>false</ack><error>x</error><name>n</name>"
                  "<serialnumber>s</serialnumber></ost></arvex>", ""},
        {&ostrel, "<arvex><ostrel><flow>1</flow></ostrel></arvex>", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        reset_zones();
        auto doc = row.model->make();
        doc->_set_changed(false);
        EXPECT_EQ(row.model->serve ? row.model->serve(*doc, row.message) : reply(*doc, row.message), row.answer);
        EXPECT_FALSE(doc->has_changed());
        EXPECT_EQ(reply(*doc, "<arvex>&query;</arvex>"), golden(row.model->file + "_query.txt"));
    }
}

// Settings count as a configuration change; commands, versions and logs do not.
TEST(Documents, IsConfigChangedCountsSettingsOnly)
{
    const struct {
        const Model* model;
        const char* message;
        bool counts;
    } rows[] = {
        // Each model's messages that do not count, all in one: any of them counting fails the row.
        {&tolvan, "<cmd><poll>true</poll></cmd><cpld><ver>7</ver><motor><actual_pos>3</actual_pos></motor></cpld>",
         false},
        {&tolvan, "<factory><cmd><commit>true</commit></cmd></factory>", true},  // the factory section changed
        {&tolvan, "<output><status>true</status></output>", true},
        {&tolvan, "<box><usb><zip>true</zip></usb></box>", true},
        {&tolvan, "<cfg><sdmaddress>3</sdmaddress></cfg>", true}, {&tolvan, "<cal><ch4zero>0.1</ch4zero></cal>", true},
        {&tolvan, "<factory><dither>5</dither></factory>", true}, {&tolvan, "<ver>1.2</ver>", true},
        {&tolvan, "<name>ch4-0007</name>", true}, {&tolvan, "<ipaddress>10.0.0.9</ipaddress>", true},
        {&dravik, "<fpga>2.0</fpga><dsp>3.0</dsp><cmd><poll>true</poll></cmd><run><runnow>go</runnow>"
                  "<scripts><script><name>a</name></script></scripts></run>", false},
        {&dravik, "<output><status>true</status></output>", true},
        {&dravik, "<cfg><match><percent>1</percent></match></cfg>", true},
        {&dravik, "<cal><oxygen>20</oxygen></cal>", true},
        {&dravik, "<history><record><time>5</time></record></history>", true},
        {&dravik, "<factory><caldate>2016-01-06</caldate></factory>", true}, {&dravik, "<ver>1.0</ver>", true},
        {&dravik, "<name>head</name>", true}, {&dravik, "<ipaddress>10.0.0.2</ipaddress>", true},
        {&quenta, "<cal><zero>3</zero></cal><output><status>true</status></output><cmd><reboot>true</reboot></cmd>",
         false},
        {&quenta, "<cfg><head>dravik-0042</head></cfg>", true},
        {&quenta, "<cfg><gpio><ch1_pullup>on</ch1_pullup></gpio></cfg>", true},  // its own tag, not the label's
        {&quenta, "<factory><humidifier><low>40</low></humidifier></factory>", true},
        {&quenta, "<ver>2.1.0</ver>", true}, {&quenta, "<name>console</name>", true},
        {&quenta, "<ipaddress>10.0.0.2</ipaddress>", true},
        {&halden, "<history><record><time>2016-01-06 09:27:23.00</time><type>zero_dc0</type><DC0>5</DC0><Pc0>0</Pc0>"
                  "</record></history><cmd><rect>true</rect></cmd><fpga>1.4</fpga><dsp>2.0</dsp>", false},
        {&halden, "<cal><Pc0>12</Pc0></cal>", true},
        {&halden, "<output><datarawcapture>true</datarawcapture></output>", true},
        {&halden, "<cfg><measure><dark_modrate>20</dark_modrate></measure></cfg>", true},
        {&halden, "<factory><bias><red_bias>3000</red_bias></bias></factory>", true}, {&halden, "<ver>3.1</ver>", true},
        {&bremmel, "<factory><serialnumber>BR-0007</serialnumber></factory><cmd><reboot>true</reboot></cmd>", false},
        {&bremmel, "<output><dataclock>true</dataclock></output>", true},
        {&bremmel, "<cfg><gpstype>Garmin</gpstype></cfg>", true}, {&bremmel, "<ipaddress>10.1.1.1</ipaddress>", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        auto doc = row.model->make();
        doc->_set_changed(false);
        EXPECT_FALSE(row.model->config_changed(*doc));
        EXPECT_EQ(reply(*doc, envelope(row.model->tag, row.message)), "");
        EXPECT_TRUE(doc->has_changed());
        EXPECT_EQ(row.model->config_changed(*doc), row.counts);
    }
    DocTolvan fresh;
    EXPECT_TRUE(fresh.Conf().IsConfigChanged());
    // The Quenta's serial number counts through the read-only view at the model level.
    Clean<DocQuenta> quenta_doc;
    quenta_doc.Conf().Serialnumber()._set_changed(true);
    EXPECT_TRUE(quenta_doc.Conf().IsConfigChanged());
}

// A command holds for the message that sets it and is changed as sent; the next message clears it.
TEST(Documents, CommandsLastOneMessage)
{
    const struct {
        const Model* model;
        std::string message, command, next;
        std::pair<std::string, std::string> kept;  // a value the next message leaves alone
    } rows[] = {
        {&bremmel, "<cmd><logusbstart>true</logusbstart></cmd>", "cmd/logusbstart", "<name>logger</name>", {}},
        {&bremmel, "<cmd><logusbstop>true</logusbstop></cmd>", "cmd/logusbstop", "<name>logger</name>", {}},
        {&bremmel, "<cmd><ejectusb>true</ejectusb></cmd>", "cmd/ejectusb", "<name>logger</name>", {}},
        {&bremmel, "<cmd><reboot>true</reboot></cmd>", "cmd/reboot", "<name>logger</name>", {}},
        {&dravik, "<cmd><poweroff>true</poweroff></cmd>", "cmd/poweroff", "<name>head</name>", {}},
        {&quenta, "<cmd><connectlightsource>true</connectlightsource></cmd>", "cmd/connectlightsource",
         "<cmd><disconnectlightsource>true</disconnectlightsource></cmd>", {"cmd/disconnectlightsource", "true"}},
        {&halden, "<output><datarawcapture>true</datarawcapture></output><cmd><rawcapture>true</rawcapture></cmd>",
         "cmd/rawcapture", "<cfg><rawdatacapture><when>flash</when></rawdatacapture></cfg>",
         {"output/datarawcapture", "true"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const Model& m = *row.model;
        auto doc = m.make();
        doc->_set_changed(false);
        EXPECT_EQ(m.serve(*doc, envelope(m.tag, row.message) + "\n"), "");
        EXPECT_EQ(m.query(*doc, row.command), "true");
        std::ostringstream changes;
        Configurable::set_compact(changes, true);
        doc->changed(changes);
        EXPECT_EQ(changes.str(), envelope(m.tag, row.message));

        EXPECT_EQ(m.serve(*doc, envelope(m.tag, row.next)), "");
        EXPECT_EQ(m.query(*doc, row.command), "false");
        if (!row.kept.first.empty()) {
            EXPECT_EQ(m.query(*doc, row.kept.first), row.kept.second);
        }
    }
}

// --- ConfigIPAddress ---

// Bad text is reported and leaves the address as it was, and the section goes on; only a real change marks.
TEST(IPAddress, ReadsAndChanges)
{
    const std::pair<const char*, bool> rows[] = {{"10.0.0.7", true}, {"fe80::1", true}, {"192.168.1.95", true},
                                                 {"300.1.1.1", false}, {"fe80::g", false}, {"gateway", false},
                                                 {"1.2.3.4.5", false}};
    for (const auto& [text, good] : rows) {
        SCOPED_TRACE(text);
        ConfigCfgNetwork network;
        EXPECT_EQ(reply(network, std::string("<network><ipaddress>") + text +
                                     "</ipaddress><netmask>255.0.0.0</netmask></network>"),
                  good ? "" : "<Error Param=\"ipaddress\">unable to read IP address\n</Error>");
        EXPECT_EQ(network.Ipaddress().get().Presentation(), good ? text : "192.168.1.95");
        EXPECT_EQ(network.Netmask().get().Presentation(), "255.0.0.0");
    }

    ConfigCfgNetwork network;
    network._set_changed(false);
    network.Ipaddress().set(SocketAddress("192.168.1.95"));
    EXPECT_FALSE(network.has_changed());
    network.Ipaddress().set(SocketAddress("192.168.1.96"));
    EXPECT_TRUE(network.has_changed());
    EXPECT_EQ(network.Ipaddress().change_count(), 1u);
    network._set_changed(false);
    network.set_to_default();
    EXPECT_EQ(query(network, "&query_changes;"), "<network><ipaddress>192.168.1.95</ipaddress></network>");
}

// --- ConfigTimezone ---

class Timezone : public ::testing::Test {
protected:
    void TearDown() override { reset_zones(); }
};

TEST_F(Timezone, DescriptorReplacesTheListOfEveryDocument)
{
    Root first, second;
    EXPECT_EQ(reply(first, "<L><clock><zone>{UTC|Europe/Oslo|America/Denver}</zone></clock></L>"), "");
    for (Root* root : {&first, &second})
        EXPECT_EQ(root->clock.Zone().choices(), (std::vector<std::string>{"UTC", "Europe/Oslo", "America/Denver"}));
    EXPECT_EQ(reply(second, "<L><clock><zone>&query_doctype;</zone></clock></L>"),
              "<L><clock><zone>{UTC|Europe/Oslo|America/Denver}</zone></clock></L>");

    second.clock.Zone().set_str("America/Denver");
    EXPECT_EQ(second.clock.Zone().get_str(), "America/Denver");
    second.clock.Zone().set_str("Asia/Tokyo");
    EXPECT_EQ(second.clock.Zone().get_str(), "America/Denver");
    second.clock.Zone().set_str("america/denver");
    EXPECT_EQ(second.clock.Zone().get(), 2);

    EXPECT_EQ(reply(first, "<L><clock><zone>Europe/Oslo</zone></clock></L>"), "");
    EXPECT_EQ(first.clock.Zone().get_str(), "Europe/Oslo");
}

// A shorter list leaves no dangling zone; an empty one takes nothing.
TEST_F(Timezone, ShorterOrEmptyList)
{
    Root root;
    reply(root, "<L><clock><zone>{UTC|A|B}</zone></clock></L>");
    root.clock.Zone().set_str("B");
    reply(root, "<L><clock><zone>{UTC}</zone></clock></L>");
    EXPECT_EQ(root.clock.Zone().get_str(), "");
    EXPECT_EQ(query(root.clock),
              "<L><clock><time>00:00:00</time><date>1970-01-01</date><zone/><ptp>auto</ptp></clock></L>");
    root.clock.Zone().set_str("UTC");
    EXPECT_EQ(root.clock.Zone().get_str(), "UTC");

    EXPECT_EQ(reply(root, "<L><clock><zone>{}</zone></clock></L>"), "");
    EXPECT_TRUE(root.clock.Zone().choices().empty());
    root.clock.Zone().set_str("UTC");
    EXPECT_EQ(root.clock.Zone().get_str(), "");
}

// --- ConfigCfgClock ---

/// Runs a test body under a given TZ and puts the old one back.
struct LocalZone {
    const bool had = std::getenv("TZ") != nullptr;
    const std::string old = had ? std::getenv("TZ") : "";
    explicit LocalZone(const char* tz) { setenv("TZ", tz, 1), tzset(); }
    ~LocalZone() { had ? setenv("TZ", old.c_str(), 1) : unsetenv("TZ"), tzset(); }
};

TEST(Clock, TimeDateRoundTripsThroughDaylightSaving)
{
    LocalZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    ConfigCfgClock clock;
    auto wall = [](std::time_t t) {
        std::tm local{};
        localtime_r(&t, &local);
        char text[32];
        std::strftime(text, sizeof text, "%F %T", &local);
        return std::string(text);
    };
    const std::time_t start = 1609459200;  // 2021-01-01 UTC
    for (std::time_t t = start; t < start + 366 * 86400; t += 3607) {
        // In the hour that repeats in autumn a wall time names two instants; either is right.
        if (wall(t) == wall(t - 3600) || wall(t) == wall(t + 3600))
            continue;
        clock.TimeDate(t);
        ASSERT_EQ(clock.TimeDate(), t) << wall(t);
    }
}

TEST(Clock, TimeDateChecksOnlyTheSeparatorsAndWritesZeroFilled)
{
    LocalZone zone("UTC0");
    struct Row {
        const char* date;
        const char* time;
        const char* error;  // null: 2021-01-01 12:00:00
    } rows[] = {
        {"2021-01-01", "12:00:00", nullptr},
        {"2020-13-01", "12:00:00", nullptr},  // month 13 rolls over
        {"2020-12-32", "12:00:00", nullptr}, {"2021-01-01", "11:60:00", nullptr},
        {"2021/01/01", "12:00:00", "Invalid date format (should be YYYY-MM-DD): 2021/01/01"},
        {"2021-01", "12:00:00", "Invalid date format (should be YYYY-MM-DD): 2021-01"},
        {"", "12:00:00", "Invalid date format (should be YYYY-MM-DD): "},
        {"2021-01-01", "12-00-00", "Invalid time format (should be HH:MM:SS): 12-00-00"},
        {"2021-01-01", "12:00", "Invalid time format (should be HH:MM:SS): 12:00"},
        {"2021-01-01", "noon", "Invalid time format (should be HH:MM:SS): noon"},
        {"01.01.2021", "noon", "Invalid date format (should be YYYY-MM-DD): 01.01.2021"},  // date first
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.date) + " " + row.time);
        ConfigCfgClock clock;
        clock.Date().set(row.date);
        clock.Time().set(row.time);
        if (!row.error) {
            EXPECT_EQ(clock.TimeDate(), 1609502400);
            continue;
        }
        try {
            clock.TimeDate();
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), row.error);
        }
    }

    // Times are written zero-filled.
    ConfigCfgClock clock;
    clock.TimeDate(981173106);  // 2001-02-03 04:05:06 UTC
    EXPECT_EQ(query(clock),
              "<clock><time>04:05:06</time><date>2001-02-03</date><zone>UTC</zone><ptp>auto</ptp></clock>");
    EXPECT_EQ(clock.TimeDate(), 981173106);
}

// --- Light source ---

TEST(LightSource, LabelsAppearOnceTheInstrumentNamesThem)
{
    ConfigLightSource lightsource;
    EXPECT_EQ(reply(lightsource, "<lightsource><color_mix labels=\"r,g,b\">1,2,3</color_mix></lightsource>"), "");
    EXPECT_EQ(lightsource.Labels().get(), "r,g,b");
    EXPECT_EQ(reply(lightsource, "<lightsource><color_mix>&query;</color_mix></lightsource>"),
              "<lightsource><color_mix labels=\"r,g,b\">1,2,3</color_mix></lightsource>");
}

// --- Units ---

TEST(Units, IncomingUnitsChangeNothing)
{
    const char* messages[] = {
        "<L><lightsource><Q_setpoint units=\"mg\">5</Q_setpoint></lightsource></L>",
        "<L><lightsource><Q_setpoint units>5</Q_setpoint></lightsource></L>",
    };
    for (const char* message : messages) {
        SCOPED_TRACE(message);
        Root root;
        root._set_changed(false);
        EXPECT_EQ(reply(root, message), "");
        EXPECT_EQ(root.lightsource.Q_setpoint().get(), 5);
        EXPECT_EQ(reply(root, "<L><lightsource>&query_changes;</lightsource></L>"),
                  "<L><lightsource><Q_setpoint>5</Q_setpoint></lightsource></L>");
    }

    Root root;
    root._set_changed(false);
    EXPECT_EQ(reply(root, "<L><lightsource><Q_setpoint units=\"mg\"/></lightsource></L>"), "");
    EXPECT_FALSE(root.has_changed());
    EXPECT_EQ(reply(root, "<L><lightsource><Q_setpoint>&query_doctype;</Q_setpoint></lightsource></L>"),
              "<L><lightsource><Q_setpoint units=\"{string:µmol/m²/s}\">{float:0;0...3.40282e+38}</Q_setpoint>"
              "</lightsource></L>");
}

TEST(Units, SharedAttributeOutlivesTheNodeThatAttachedItLast)
{
    // The shared attribute's parent is the last node built with it; that node is gone here.
    Root survivor;
    std::make_unique<Root>().reset();
    survivor._set_changed(false);
    EXPECT_EQ(reply(survivor, "<L><factory><lightsource><rate units=\"kHz\">4</rate></lightsource></factory></L>"), "");
    EXPECT_EQ(survivor.factory_lightsource.Rate().get(), 4);
    EXPECT_FALSE(survivor.clock.has_changed());
}

}  // namespace
