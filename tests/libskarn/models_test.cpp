// The models other than the Tolvan: Dravik, Quenta, Halden and Ostrel.

#include <gtest/gtest.h>

#include <ctime>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docostrel.h"
#include "libskarn/docquenta.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

// --- Dravik ---

std::string query(Configurable& node, const std::string& path_open, const std::string& path_close)
{
    return reply(node, "<arvex><dravik>" + path_open + "&query_item;" + path_close + "</dravik></arvex>");
}

std::vector<std::string> types(const ConfigCalHistoryDravik& history)
{
    std::vector<std::string> result;
    for (const Configurable* child : history.children())
        result.push_back(static_cast<const ConfigCalRecordDravik*>(child)->Type().get());
    return result;
}

void add_record(ConfigCalHistoryDravik& history, long time, const std::string& type)
{
    auto* record = new ConfigCalRecordDravik(time, type, 21, 1, 1, 0, 1, 1, 0, 1, 1, 0, 1, 1, 0, 0, 0, 1, 0, 0,
                                             2.5f, 50000, 50000);
    history.add(*record);
}

TEST(DravikCalHistory, ClearOldRecordsKeepsTheLastOfEachKindInKindOrder)
{
    struct Row {
        std::vector<std::string> before;
        std::vector<std::string> after;
    } rows[] = {
        {{"A:1", "A:2", "B:1"}, {"A:2", "B:1"}}, {{"B", "A:x", "A", "B:y"}, {"A", "B:y"}},
        {{"CO2A Zero", "CO2A Zero:late", "CO2A Zero x"}, {"CO2A Zero:late", "CO2A Zero x"}},
        {{"", ":a", "", "Z"}, {"", "Z"}}, {{}, {}},
    };
    for (const Row& row : rows) {
        ConfigCalHistoryDravik history;
        long time = 100;
        for (const std::string& type : row.before)
            add_record(history, time++, type);
        history.ClearOldRecords();
        EXPECT_EQ(types(history), row.after);
    }
}

TEST(DravikCalHistory, SurvivorsKeepTheirValuesAndTag)
{
    DocDravik doc;
    ConfigCalHistoryDravik& history = doc.Conf().History();
    add_record(history, 10, "H2OA Span1:old");
    add_record(history, 20, "H2OA Span1:new");
    static_cast<ConfigCalRecordDravik*>(history.children().back())->Ssb_ref().set(123);
    history.ClearOldRecords();
    EXPECT_EQ(query(doc, "<history>", "</history>"),
              "<record><time>20</time><type>H2OA Span1:new</type><oxygen>21</oxygen><co2azero>1</co2azero>"
              "<co2aspan1>1</co2aspan1><co2aspan2>0</co2aspan2><co2bzero>1</co2bzero><co2bspan1>1</co2bspan1>"
              "<co2bspan2>0</co2bspan2><h2oazero>1</h2oazero><h2oaspan1>1</h2oaspan1><h2oaspan2>0</h2oaspan2>"
              "<h2obzero>1</h2obzero><h2obspan1>1</h2obspan1><h2obspan2>0</h2obspan2><tazero>0</tazero>"
              "<tbzero>0</tbzero><flowmeterzero>1</flowmeterzero><flowazero>0</flowazero><flowbzero>0</flowbzero>"
              "<chamberpressurezero>2.5</chamberpressurezero><ssa_ref>50000</ssa_ref><ssb_ref>123</ssb_ref>"
              "</record>");
}

TEST(DravikCalHistory, AMessageReplacesTheListAndTimeReadsLocalDates)
{
    DocDravik doc;
    add_record(doc.Conf().History(), 1, "old");
    EXPECT_EQ(reply(doc, "<arvex><dravik><history><record><time>2016-01-06 09:27:23</time><type>CO2A Zero</type>"
                         "</record><record><time>7</time></record></history></dravik></arvex>"),
              "");
    std::tm local{};  // 2016-01-06 09:27:23 local time
    local.tm_sec = 23, local.tm_min = 27, local.tm_hour = 9, local.tm_mday = 6, local.tm_year = 116, local.tm_isdst = -1;
    const std::time_t expected = std::mktime(&local);
    EXPECT_EQ(types(doc.Conf().History()), (std::vector<std::string>{"CO2A Zero", ""}));
    const auto* first = static_cast<const ConfigCalRecordDravik*>(doc.Conf().History().children().front());
    EXPECT_EQ(first->Time().get(), expected);
    EXPECT_EQ(first->name(), "record");
}

// Assigning takes values and flags and keeps the name.
TEST(DravikCalHistory, Assignment)
{
    ConfigCalRecordDravik key("record", "B");
    key.Co2bspan2().set(0.5f);
    key._set_changed(false);
    key.Tazero().set(1.25f);
    ConfigCalRecordDravik target("cal");
    target = key;
    EXPECT_EQ(std::make_tuple(target.name(), target.Type().get(), target.Co2bspan2().get(), target.Tazero().get()),
              std::make_tuple("cal", "B", 0.5f, 1.25f));
    EXPECT_FALSE(target.Co2bspan2().has_changed());
    EXPECT_TRUE(target.Tazero().has_changed());
}

// Script code crosses the wire escaped, as it stands, both ways; conditions travel as attributes.
TEST(DravikScripts, CodeAndConditionsOnTheWire)
{
    DocDravik doc;
    EXPECT_EQ(reply(doc, "<arvex><dravik><run><scripts><script ondata=\"DATAH\" onmatch=\"1\"><name>a</name>"
                         "<code>x&eol;y&amper;</code></script><script><name>b</name></script></scripts>"
                         "<runnow>&amper;&eol;</runnow></run></dravik></arvex>"),
              "");
    EXPECT_EQ(query(doc, "<run>", "</run>"),
              "<scripts><script ondata=\"DATAH\" onmatch=\"1\"><name>a</name><code>x&eol;y&amper;</code></script>"
              "<script ondata onmatch><name>b</name><code/></script></scripts><runnow>&amper;&eol;</runnow>");
    EXPECT_EQ(doc.Conf().Run().Scripts().LookupScript("a")->Code(), "x\ny&");
    EXPECT_EQ(doc.Conf().Run().RunNow(), "&\n");
}

// --- Quenta ---

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

// --- Halden ---

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

// --- Ostrel ---

TEST(Ostrel, FlowIsAFraction)
{
    const std::pair<const char*, float> rows[] = {{"1", 1}, {"1.5", 1}, {"0.25", 0.25f}, {"-0.5", 0}, {"0", 0}};
    for (const auto& [sent, stored] : rows) {
        DocOstrel doc;
        EXPECT_EQ(reply(doc, envelope("ost", std::string("<flow>") + sent + "</flow>")), "") << sent;
        EXPECT_EQ(doc.Conf().Flow().get(), stored) << sent;
    }
}

}  // namespace
