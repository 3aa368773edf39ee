#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "libskarn/docquenta.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

using CleanDoc = Clean<DocQuenta>;

// The pull-up works under its own tag (the label table names it adc_ch1_pullup); the serial number
// counts through the view at the model level.
TEST(Quenta, Ch1PullupAndSerialnumberAreConfigChanges)
{
    CleanDoc doc;
    EXPECT_EQ(reply(doc, envelope("quenta", "<cfg><gpio><ch1_pullup>on</ch1_pullup></gpio></cfg>")), "");
    EXPECT_EQ(doc.Conf().Cfg().Gpio().Ch1_pullup().get_string(), "on");
    EXPECT_TRUE(doc.Conf().IsConfigChanged());
    CleanDoc other;
    other.Conf().Serialnumber()._set_changed(true);
    EXPECT_TRUE(other.Conf().IsConfigChanged());
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

}  // namespace
