#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "libskarn/docquenta.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

using CleanDoc = Clean<DocQuenta>;

TEST(Quenta, FreshDocumentMatchesGoldenReplies)
{
    reset_zones();
    DocQuenta doc;
    EXPECT_EQ(reply(doc, "<arvex>&query;</arvex>"), golden("quenta_query.txt"));
    EXPECT_EQ(reply(doc, "<arvex>&query_doctype;</arvex>"), golden("quenta_doctype.txt"));
}

TEST(Quenta, Ch1PullupWorksUnderItsTagThoughTheLabelMissesIt)
{
    CleanDoc doc;
    EXPECT_EQ(reply(doc, envelope("quenta", "<cfg><gpio><ch1_pullup>on</ch1_pullup></gpio></cfg>")), "");
    EXPECT_EQ(doc.Conf().Cfg().Gpio().Ch1_pullup().get_string(), "on");
    EXPECT_TRUE(doc.Conf().IsConfigChanged());
    const auto& labels = ConfigQuenta::Labels();
    EXPECT_EQ(labels.count("ch1_pullup"), 0u);
    EXPECT_EQ(labels.count("adc_ch1_pullup"), 1u);
}

TEST(Quenta, GpioPinsAreReachedByNumber)
{
    DocQuenta doc;
    ConfigCfgGpio& gpio = doc.Conf().Cfg().Gpio();
    EXPECT_EQ(reply(doc, envelope("quenta", "<cfg><gpio><io1>high</io1><io8>low</io8><io3>floating</io3></gpio></cfg>")),
              "<Error Param=\"io3\">invalid option: floating\n</Error>");
    EXPECT_EQ(gpio.Io(1).name(), "io1");
    EXPECT_EQ(gpio.Io(1).get_string(), "high");
    EXPECT_EQ(gpio.Io(8).get_string(), "low");
    EXPECT_EQ(gpio.Io(3).get_string(), "input");
    EXPECT_THROW(gpio.Io(0), std::out_of_range);
    EXPECT_THROW(gpio.Io(9), std::out_of_range);
}

TEST(Quenta, OnlySettingsCountAsConfigChanges)
{
    struct Row {
        const char* message;
        bool counts;
    } rows[] = {
        {"<cfg><head>dravik-0042</head></cfg>", true},
        {"<factory><humidifier><low>40</low></humidifier></factory>", true},
        {"<ver>2.1.0</ver>", true},
        {"<name>console</name>", true},
        {"<ipaddress>10.0.0.2</ipaddress>", true},
        {"<cal><zero>3</zero></cal>", false},
        {"<output><status>true</status></output>", false},
        {"<cmd><reboot>true</reboot></cmd>", false},
        {"<cfg><head>auto</head></cfg>", false},  // the value it already has
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        CleanDoc doc;
        EXPECT_FALSE(doc.Conf().IsConfigChanged());
        reply(doc, envelope("quenta", row.message));
        EXPECT_EQ(doc.Conf().IsConfigChanged(), row.counts);
    }
    // A changed serial number counts through the view at the model level.
    CleanDoc doc;
    doc.Conf().Serialnumber()._set_changed(true);
    EXPECT_TRUE(doc.Conf().IsConfigChanged());
}

TEST(Quenta, LightSourceCommandsLastOneMessage)
{
    DocQuenta doc;
    doc._set_changed(false);
    const std::string line = envelope("quenta", "<cmd><connectlightsource>true</connectlightsource></cmd>");
    std::ostringstream out;
    std::istringstream in(line + "\n");
    doc.configure_and_send_events(in, out);
    EXPECT_TRUE(doc.Conf().Cmd().Connectlightsource().get());
    std::ostringstream changes;
    Configurable::set_compact(changes, true);
    doc.changed(changes);
    EXPECT_EQ(changes.str(), line);

    std::istringstream next(envelope("quenta", "<cmd><disconnectlightsource>true</disconnectlightsource></cmd>"));
    doc.configure_and_send_events(next, out);
    EXPECT_FALSE(doc.Conf().Cmd().Connectlightsource().get());
    EXPECT_TRUE(doc.Conf().Cmd().Disconnectlightsource().get());
    EXPECT_EQ(out.str(), "");
}

}  // namespace
