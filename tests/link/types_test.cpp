// The per-model types: their words, their record times and the messages they select records with.

#include <gtest/gtest.h>

#include "link/connectortype.h"

namespace {

TEST(ConnectorTypes, WordsAndDocuments)
{
    struct Row {
        const char* word;
        const char* name;
        const char* model_tag;
        bool selects_records;
    } rows[] = {
        {"tolvan", "tolvan", "tolvan", true},  {"morvik", "morvik", "morvik", false},
        {"sarnel", "sarnel", "morvik", false}, {"halden", "dravik", "halden", true},
        {"dravik", "dravik", "dravik", true},  {"quenta", "dravik", "quenta", true},
        {"bremmel", "bremmel", "bremmel", true}, {"ostrel", "ostrel", "ost", true},
        {"Tolvan", "tolvan", "tolvan", true},  {"", "tolvan", "tolvan", true},
    };
    for (const Row& row : rows) {
        auto type = ConnectorType::Make(row.word);
        EXPECT_EQ(type->TypeName(), row.name) << row.word;
        auto* composite = dynamic_cast<ConfigurableComposite*>(&type->Doc());
        ASSERT_NE(composite, nullptr);
        EXPECT_EQ(composite->name(), "arvex");
        EXPECT_EQ(composite->children().front()->name(), row.model_tag) << row.word;
        const std::string selection = type->OutputSelection();
        EXPECT_EQ(!selection.empty(), row.selects_records) << row.word;
        if (!selection.empty()) {
            EXPECT_EQ(selection.back(), '\n');
        }
        EXPECT_EQ(type->ClockSyncSelection(true).empty(), std::string(row.name) != "tolvan") << row.word;
    }
}

TEST(ConnectorTypes, RecordTimes)
{
    double a = 5, b = 7, c = 250000000, d = 500000000;
    const ConnectorType::Cells cells{&a, &b, &c, &d};
    struct Row {
        const char* word;
        const char* record;
        double time, test_time;
    } rows[] = {
        {"tolvan", "DATA", 7.25, 1}, {"morvik", "DATASTAT", 7.25, 1},
        {"halden", "DATA", 5, 5},    {"quenta", "DATASTAT", 5, 5},  {"ostrel", "DATA", 5, 5},
        {"bremmel", "DATA", 250000000.5, 1}, {"bremmel", "DATAGPS", 5.000000007, 1},
    };
    for (const Row& row : rows) {
        auto type = ConnectorType::Make(row.word);
        EXPECT_DOUBLE_EQ(type->RecordTime(row.record, cells), row.time) << row.word << " " << row.record;
        EXPECT_DOUBLE_EQ(type->TestRecordTime("DATATEST", cells), row.test_time) << row.word;
    }
    auto counting = ConnectorType::Make("tolvan");
    counting->TestRecordTime("DATATEST", {});
    EXPECT_EQ(counting->TestRecordTime("DATATEST", {}), 2);

    // The Dravik stamps every other record with the time of the last DATA.
    auto dravik = ConnectorType::Make("dravik");
    EXPECT_EQ(dravik->RecordTime("DATASTAT", cells), 0);
    EXPECT_EQ(dravik->RecordTime("DATA", cells), 5);
    a = 9;
    EXPECT_EQ(dravik->RecordTime("DATASTAT", cells), 5);
    EXPECT_EQ(dravik->TestRecordTime("DATATEST", cells), 9);
}

}  // namespace
