#include <gtest/gtest.h>

#include <ctime>
#include <sstream>
#include <string>
#include <vector>

#include "libskarn/docdravik.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

std::string query(Configurable& node, const std::string& path_open, const std::string& path_close)
{
    return reply(node, "<arvex><dravik>" + path_open + "&query_item;" + path_close + "</dravik></arvex>");
}

TEST(DravikCfg, CellIsAChildOnlyOfCo2AndH2o)
{
    DocDravik doc;
    EXPECT_EQ(reply(doc, envelope("dravik", "<cfg><flow><cell>sample</cell></flow><co2><cell>sample</cell></co2>"
                                            "<h2o><cell>sample</cell></h2o></cfg>")), "");
    ConfigCfgDravik& cfg = doc.Conf().Cfg();
    EXPECT_EQ(cfg.Flow().Cell().get(), 0);
    EXPECT_EQ(cfg.Co2().Cell().get_string(), "sample");
    EXPECT_EQ(cfg.H2o().Cell().get_string(), "sample");
}

// --- calibration history ---

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

TEST(DravikCalHistory, RecordsAreTheSameByTimeAlone)
{
    ConfigCalHistoryDravik history;
    add_record(history, 50, "A");
    ConfigCalRecordDravik key("record", "B");
    key.Time().set(50);
    EXPECT_NE(history.find(key), nullptr);
    key.Time().set(51);
    EXPECT_EQ(history.find(key), nullptr);
}

TEST(DravikCalHistory, CopiesCarryValuesFlagsAndName)
{
    ConfigCalRecordDravik original("cal", "Factory");
    original.Co2bspan2().set(0.5f);
    original._set_changed(false);
    original.Tazero().set(1.25f);
    const ConfigCalRecordDravik copy(original);
    EXPECT_EQ(copy.name(), "cal");
    EXPECT_EQ(copy.Type().get(), "Factory");
    EXPECT_TRUE(copy.has_changed());
    ConfigCalRecordDravik target("record");
    target = copy;
    EXPECT_EQ(target.name(), "record");
    EXPECT_EQ(target.Co2bspan2().get(), 0.5f);
    EXPECT_EQ(target.Tazero().get(), 1.25f);
    EXPECT_FALSE(target.Co2bspan2().has_changed());
    EXPECT_TRUE(target.Tazero().has_changed());
}

// --- scripts ---

TEST(DravikScripts, CodecOfTheThreeEntities)
{
    struct Row {
        std::string stored;
        std::string text;
    } rows[] = {
        {"a&tab;b&eol;c&amper;d", "a\tb\nc&d"}, {"\r&eol;", "\r\n"},
        {"x&tab", "x\t"},                       // the end of the text closes the name
        {"x&bogus;y", std::string("x\0y", 3)},  // an unknown name gives NUL
        {"&;", std::string(1, '\0')},
        {"&TAB;", std::string(1, '\0')},        // names are case sensitive
        {"x&", "x"}, {"", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.stored);
        EXPECT_EQ(DecodeScriptText(row.stored), row.text);
    }
    const std::string text = "if x &&\ty\n\tgo\r\n&amper;";
    EXPECT_EQ(EncodeScriptText(text), "if x &amper;&amper;&tab;y&eol;&tab;go\r&eol;&amper;amper;");
    EXPECT_EQ(DecodeScriptText(EncodeScriptText(text)), text);
}

TEST(DravikScripts, CodeAndRunNowAreStoredEscaped)
{
    DocDravik doc;
    ConfigRun& run = doc.Conf().Run();
    run.SetRunNow("a\tb");
    EXPECT_EQ(run.RunNow(), "a\tb");
    ConfigScript& script = run.Scripts().AddScript("s1");
    script.SetCode("x\ny&");
    EXPECT_EQ(script.Code(), "x\ny&");
    EXPECT_EQ(query(doc, "<run>", "</run>"),
              "<scripts><script ondata onmatch><name>s1</name><code>x&eol;y&amper;</code></script></scripts>"
              "<runnow>a&tab;b</runnow>");
    // The escaped form crosses the wire as it stands, both ways.
    EXPECT_EQ(reply(doc, "<arvex><dravik><run><runnow>&amper;&eol;</runnow></run></dravik></arvex>"), "");
    EXPECT_EQ(run.RunNow(), "&\n");
}

TEST(DravikScripts, ListOperationsByName)
{
    ConfigScripts scripts;
    ConfigScript& first = scripts.AddScript("dup");
    scripts.AddScript("other");
    ConfigScript& second = scripts.AddScript("dup");
    EXPECT_EQ(first.name(), "script");
    EXPECT_EQ(scripts.LookupScript("dup"), &first);
    EXPECT_NE(scripts.LookupScript("dup"), &second);
    EXPECT_EQ(scripts.LookupScript(""), nullptr);
    EXPECT_FALSE(scripts.ScriptExists("Dup"));

    scripts.RenameScript("other", "dup");
    scripts.RenameScript("none", "x");
    EXPECT_EQ(scripts.children().size(), 3u);
    scripts._set_changed(false);
    scripts.DelScript("dup");
    EXPECT_TRUE(scripts.children().empty());
    EXPECT_FALSE(scripts.has_changed());

    scripts.AddScript("");
    EXPECT_TRUE(scripts.ScriptExists(""));
    const ConfigScripts& view = scripts;
    EXPECT_EQ(view.LookupScript("")->Name().get(), "");
}

TEST(DravikScripts, ConditionsTravelAsAttributes)
{
    DocDravik doc;
    EXPECT_EQ(reply(doc, "<arvex><dravik><run><scripts><script ondata=\"DATAH\" onmatch=\"1\"><name>a</name>"
                         "<code>go</code></script><script><name>b</name></script></scripts></run></dravik></arvex>"),
              "");
    const ConfigScripts& scripts = doc.Conf().Run().Scripts();
    ASSERT_EQ(scripts.children().size(), 2u);
    EXPECT_EQ(query(doc, "<run><scripts>", "</scripts></run>"),
              "<script ondata=\"DATAH\" onmatch=\"1\"><name>a</name><code>go</code></script>"
              "<script ondata onmatch><name>b</name><code/></script>");
    EXPECT_EQ(scripts.LookupScript("a")->Code(), "go");
}

}  // namespace
