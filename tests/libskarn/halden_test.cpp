#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "libskarn/dochalden.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

TEST(Halden, HistoryRecordsFromTheWire)
{
    DocHalden doc;
    EXPECT_EQ(reply(doc, envelope("halden", "<history><record><time>2016-01-06 09:27:23.50</time>"
                                            "<type>zero_dc0:auto</type><DC0>-5</DC0><Pc0>7</Pc0></record>"
                                            "<record><type>zero_pc0</type></record></history>")),
              "");
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
        {{}, {}}, {{"A", "A", "B"}, {"A 1", "B 2"}},
        {{"zero_pc0", "zero_dc0", "zero_pc0"}, {"zero_dc0 1", "zero_pc0 2"}},
        // The kind is the text before the first ":".
        {{"zero_dc0", "zero_dc0:after reboot"}, {"zero_dc0:after reboot 1"}},
        {{"zero_dc0:x", "zero_dc0"}, {"zero_dc0 1"}}, {{"zero", "zero_dc0"}, {"zero 0", "zero_dc0 1"}},
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

TEST(Halden, FactoryLabelsExtendThePlainOnes)
{
    const auto& factory = ConfigHalden::FactoryLabels();
    for (const auto& entry : ConfigHalden::Labels())
        EXPECT_EQ(factory.count(entry.first) ? factory.at(entry.first) : "(none)", entry.second) << entry.first;
    EXPECT_EQ(ConfigHalden::Labels().count("bias"), 0u);
    EXPECT_EQ(factory.at("bias"), "Factory Bias");
}

}  // namespace
