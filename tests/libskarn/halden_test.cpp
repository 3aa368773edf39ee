#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "libskarn/dochalden.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

using CleanDoc = Clean<DocHalden>;

TEST(Halden, FreshDocumentMatchesGoldenReplies)
{
    reset_zones();
    DocHalden doc;
    EXPECT_EQ(reply(doc, "<arvex>&query;</arvex>"), golden("halden_query.txt"));
    EXPECT_EQ(reply(doc, "<arvex>&query_doctype;</arvex>"), golden("halden_doctype.txt"));
}

TEST(Halden, HistoryIsNoConfigChange)
{
    struct Row {
        const char* message;
        bool counts;
    } rows[] = {
        {"<history><record><time>2016-01-06 09:27:23.00</time><type>zero_dc0</type><DC0>5</DC0><Pc0>0</Pc0>"
         "</record></history>",
         false},
        {"<cmd><rect>true</rect></cmd>", false},
        {"<cal><Pc0>12</Pc0></cal>", true},
        {"<output><datarawcapture>true</datarawcapture></output>", true},
        {"<cfg><measure><dark_modrate>20</dark_modrate></measure></cfg>", true},
        {"<factory><bias><red_bias>3000</red_bias></bias></factory>", true},
        {"<fpga>1.4</fpga><dsp>2.0</dsp>", false},
        {"<ver>3.1</ver>", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        CleanDoc doc;
        EXPECT_EQ(reply(doc, envelope("halden", row.message)), "");
        EXPECT_TRUE(doc.has_changed());
        EXPECT_EQ(doc.Conf().IsConfigChanged(), row.counts);
    }
}

TEST(Halden, HistoryRecordsFromTheWire)
{
    DocHalden doc;
    EXPECT_EQ(reply(doc, envelope("halden", "<history><record><time>2016-01-06 09:27:23.50</time>"
                                            "<type>zero_dc0:auto</type><DC0>-5</DC0><Pc0>7</Pc0></record>"
                                            "<record><type>zero_pc0</type></record></history>")),
              "");
    const auto& records = doc.Conf().History().children();
    ASSERT_EQ(records.size(), 2u);
    auto& first = dynamic_cast<ConfigCalRecordHalden&>(*records.front());
    EXPECT_EQ(first.name(), "record");
    EXPECT_EQ(first.Type().get(), "zero_dc0:auto");
    EXPECT_EQ(first.DC0().get(), -5);
    EXPECT_EQ(first.Pc0().get(), 7);
    EXPECT_EQ(reply(doc, envelope("halden", "<history>&query;</history>")),
              envelope("halden", "<history><record><time>2016-01-06 09:27:23.5</time><type>zero_dc0:auto</type>"
                                 "<DC0>-5</DC0><Pc0>7</Pc0></record><record><time>1989-01-01 00:00:00</time>"
                                 "<type>zero_pc0</type><DC0>0</DC0><Pc0>0</Pc0></record></history>"));
}

/// The history as "type DC0" pairs, in list order.
std::vector<std::string> history_of(ConfigCalHistoryHalden& history)
{
    std::vector<std::string> entries;
    for (Configurable* child : history.children()) {
        auto& record = dynamic_cast<ConfigCalRecordHalden&>(*child);
        entries.push_back(record.Type().get() + " " + std::to_string(record.DC0().get()));
    }
    return entries;
}

TEST(Halden, ClearOldRecordsKeepsTheLastOfEachKind)
{
    struct Row {
        std::vector<std::string> types;  // in list order; DC0 is the position in the list
        std::vector<std::string> kept;
    } rows[] = {
        {{}, {}},
        {{"A", "A", "B"}, {"A 1", "B 2"}},
        {{"zero_pc0", "zero_dc0", "zero_pc0"}, {"zero_dc0 1", "zero_pc0 2"}},
        // The kind is the text before the first ":".
        {{"zero_dc0", "zero_dc0:after reboot"}, {"zero_dc0:after reboot 1"}},
        {{"zero_dc0:x", "zero_dc0"}, {"zero_dc0 1"}},
        {{"zero", "zero_dc0"}, {"zero 0", "zero_dc0 1"}},
        {{"", "B", ""}, {" 2", "B 1"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.types));
        DocHalden doc;
        ConfigCalHistoryHalden& history = doc.Conf().History();
        for (size_t i = 0; i < row.types.size(); ++i)
            history.add(*new ConfigCalRecordHalden(Timestamp(1000.0 + i), row.types[i], int64_t(i), 0));
        history.ClearOldRecords();
        EXPECT_EQ(history_of(history), row.kept);
    }
}

TEST(Halden, RawCaptureLineSwitchesTheRecordOnAndStartsOnce)
{
    DocHalden doc;
    const std::string line =
        "<arvex><halden><output><datarawcapture>true</datarawcapture></output><cmd><rawcapture>true</rawcapture>"
        "</cmd></halden></arvex>\n";
    std::istringstream in(line);
    std::ostringstream out;
    doc.configure_and_send_events(in, out);
    EXPECT_TRUE(doc.Conf().Output().Datarawcapture().get());
    EXPECT_TRUE(doc.Conf().Cmd().Rawcapture().get());

    std::istringstream next(envelope("halden", "<cfg><rawdatacapture><when>flash</when></rawdatacapture></cfg>"));
    doc.configure_and_send_events(next, out);
    EXPECT_FALSE(doc.Conf().Cmd().Rawcapture().get());
    EXPECT_TRUE(doc.Conf().Output().Datarawcapture().get());
    EXPECT_EQ(out.str(), "");
}

TEST(Halden, FactoryLabelsExtendThePlainOnes)
{
    const auto& plain = ConfigHalden::Labels();
    const auto& factory = ConfigHalden::FactoryLabels();
    for (const auto& entry : plain) {
        SCOPED_TRACE(entry.first);
        ASSERT_EQ(factory.count(entry.first), 1u);
        EXPECT_EQ(factory.at(entry.first), entry.second);
    }
    EXPECT_EQ(factory.at("bias"), "Factory Bias");
    EXPECT_EQ(plain.count("bias"), 0u);
    EXPECT_EQ(factory.at("redmodon"),
              ":BTN:Red Mod On:<arvex><halden><cmd><redmodon>true</redmodon></cmd></halden></arvex>\n");
    EXPECT_EQ(factory.size(), plain.size() + 26);
}

}  // namespace
