#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>
#include <sstream>
#include <string>

#include "libskarn/configcommon.h"
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
        add(clock);
        add(network);
        add(lightsource);
        factory.add(factory_lightsource);
        add(factory);
    }
};

// --- ConfigIPAddress ---

TEST(IPAddress, ReadsAddressesAndReportsText)
{
    struct Row {
        const char* text;
        const char* value_after;
        const char* reply;
    } rows[] = {
        {"10.0.0.7", "10.0.0.7", ""},
        {"fe80::1", "fe80::1", ""},
        {"192.168.1.95", "192.168.1.95", ""},
        {"300.1.1.1", "192.168.1.95", "<Error Param=\"ipaddress\">unable to read IP address\n</Error>"},
        {"fe80::g", "192.168.1.95", "<Error Param=\"ipaddress\">unable to read IP address\n</Error>"},
        {"gateway", "192.168.1.95", "<Error Param=\"ipaddress\">unable to read IP address\n</Error>"},
        {"1.2.3.4.5", "192.168.1.95", "<Error Param=\"ipaddress\">unable to read IP address\n</Error>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        ConfigCfgNetwork network;
        EXPECT_EQ(reply(network, std::string("<network><ipaddress>") + row.text + "</ipaddress></network>"),
                  row.reply);
        EXPECT_EQ(network.Ipaddress().get().Presentation(), row.value_after);
    }
}

TEST(IPAddress, BadAddressDoesNotStopTheSection)
{
    ConfigCfgNetwork network;
    EXPECT_EQ(reply(network, "<network><gateway>x</gateway><netmask>255.0.0.0</netmask></network>"),
              "<Error Param=\"gateway\">unable to read IP address\n</Error>");
    EXPECT_EQ(network.Netmask().get().Presentation(), "255.0.0.0");
    EXPECT_EQ(network.Gateway().get().Presentation(), "192.168.1.1");
}

TEST(IPAddress, SetMarksOnlyARealChange)
{
    ConfigCfgNetwork network;
    network._set_changed(false);
    network.Ipaddress().set(SocketAddress("192.168.1.95"));
    EXPECT_FALSE(network.has_changed());
    network.Ipaddress().set(SocketAddress("192.168.1.96"));
    EXPECT_TRUE(network.has_changed());
    EXPECT_EQ(network.Ipaddress().change_count(), 1u);

    network._set_changed(false);
    network.set_to_default();
    EXPECT_TRUE(network.Ipaddress().has_changed());
    EXPECT_FALSE(network.Netmask().has_changed());
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

TEST_F(Timezone, ShorterListLeavesNoDanglingZone)
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
}

TEST_F(Timezone, EmptyListIgnoresEverything)
{
    ConfigTimezone zone;
    std::istringstream in("");
    std::ostringstream err;
    zone.read_doctype(in, err);
    EXPECT_TRUE(zone.choices().empty());
    zone.set_str("UTC");
    zone.set_str("");
    EXPECT_EQ(zone.get_str(), "");
    EXPECT_EQ(err.str(), "");
}

// --- Shared choices ---

TEST(SharedChoices, RateFollowsItsParallelIntegers)
{
    static const std::vector<std::string> texts{"0", "1", "2", "5", "10"};
    static const std::vector<int> rates{0, 1, 2, 5, 10};
    ConfigRate rate(texts, rates, 2);
    EXPECT_EQ(rate.get_rate(), 2);
    EXPECT_EQ(reply(rate, "<rate>10</rate>"), "");
    EXPECT_EQ(rate.get_rate(), 10);
    EXPECT_EQ(reply(rate, "<rate>3</rate>"), "<Error Param=\"rate\">invalid option: 3\n</Error>");
    EXPECT_EQ(rate.get_rate(), 10);
    EXPECT_EQ(&rate.rates(), &rates);
}

// --- ConfigCfgClock ---

/// Runs a test body under a given TZ and puts the old one back.
class LocalZone {
public:
    explicit LocalZone(const char* tz)
    {
        if (const char* old = std::getenv("TZ"))
            _old = std::make_unique<std::string>(old);
        setenv("TZ", tz, 1);
        tzset();
    }
    ~LocalZone()
    {
        if (_old)
            setenv("TZ", _old->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

private:
    std::unique_ptr<std::string> _old;
};

TEST(Clock, TimeDateWritesZeroFilledText)
{
    LocalZone zone("UTC0");
    ConfigCfgClock clock;
    clock.TimeDate(981173106);  // 2001-02-03 04:05:06 UTC
    EXPECT_EQ(clock.Date().get(), "2001-02-03");
    EXPECT_EQ(clock.Time().get(), "04:05:06");
    EXPECT_EQ(clock.TimeDate(), 981173106);
    clock.TimeDate(0);
    EXPECT_EQ(query(clock), "<clock><time>00:00:00</time><date>1970-01-01</date><zone>UTC</zone><ptp>auto</ptp></clock>");
}

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

TEST(Clock, TimeDateChecksOnlyTheSeparators)
{
    LocalZone zone("UTC0");
    struct Row {
        const char* date;
        const char* time;
        const char* error;  // null: 2021-01-01 12:00:00
    } rows[] = {
        {"2021-01-01", "12:00:00", nullptr},
        {"2020-13-01", "12:00:00", nullptr},  // month 13 rolls over
        {"2020-12-32", "12:00:00", nullptr},
        {"2021-01-01", "11:60:00", nullptr},
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
        "<L><lightsource><Q_setpoint units=\"\">5</Q_setpoint></lightsource></L>",
    };
    for (const char* message : messages) {
        SCOPED_TRACE(message);
        Root root;
        root._set_changed(false);
        EXPECT_EQ(reply(root, message), "");
        EXPECT_EQ(root.lightsource.Q_setpoint().get(), 5);
        EXPECT_EQ(reply(root, "<L><lightsource><Q_setpoint>&query;</Q_setpoint></lightsource></L>"),
                  "<L><lightsource><Q_setpoint>5</Q_setpoint></lightsource></L>");
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
