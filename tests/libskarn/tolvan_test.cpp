#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "libskarn/doctolvan.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

using CleanDoc = Clean<DocTolvan>;

TEST(TolvanDocument, SerialnumberFollowsTheFactorySection)
{
    CleanDoc doc;
    EXPECT_EQ(reply(doc, envelope("tolvan", "<serialnumber>ch4-0001</serialnumber>")), "");
    EXPECT_FALSE(doc.has_changed());
    reply(doc, envelope("tolvan", "<factory><serialnumber>ch4-0042</serialnumber></factory>"));
    EXPECT_EQ(reply(doc, envelope("tolvan", "<serialnumber>&query;</serialnumber>")),
              envelope("tolvan", "<serialnumber>ch4-0042</serialnumber>"));
}

TEST(TolvanLeaves, OnlyTemprangeCountsTheValueItHoldsAsAChange)
{
    const std::pair<const char*, bool> cases[] = {
        {"<cfg><temprange>high</temprange></cfg>", true}, {"<cfg><temprange>low</temprange></cfg>", true},
        {"<cfg><linelock><laserblock><control>on</control></laserblock></linelock></cfg>", false},
        {"<cfg><heater><top><control>auto</control></top></heater></cfg>", false},
        {"<cfg><aux1><type>poly</type></aux1></cfg>", false}, {"<output><rate>40</rate></output>", false},
    };
    for (const auto& [message, changed] : cases) {
        CleanDoc doc;
        EXPECT_EQ(reply(doc, envelope("tolvan", message)), "") << message;
        EXPECT_EQ(doc.has_changed(), changed) << message;
    }
}

TEST(TolvanBoxData, TimeAndChecksumColumnsCannotBeSwitchedOff)
{
    const std::pair<const char*, bool> cases[] = {
        {"seconds", true}, {"nanoseconds", true}, {"chk", true}, {"diag", false}, {"ch4d", false}, {"auxtc3", false},
    };
    for (const char* section : {"output", "usb"}) {
        for (const auto& [tag, blocked] : cases) {
            CleanDoc doc;
            const std::string open = std::string("<box><") + section + "><data><" + tag + ">";
            const std::string close = std::string("</") + tag + "></data></" + section + "></box>";
            EXPECT_EQ(reply(doc, envelope("tolvan", open + "false" + close)), "") << section << "/" << tag;
            EXPECT_EQ(doc.has_changed(), !blocked) << section << "/" << tag;
            EXPECT_EQ(reply(doc, envelope("tolvan", open + "&query_item;" + close)), blocked ? "true" : "false")
                << section << "/" << tag;
        }
    }
}

// --- calibration history ---

void add_record(ConfigCalHistory& history, double time, const std::string& type, float zero)
{
    history.add(*new ConfigCalRecord(Timestamp(time), type, zero, 1));
}

std::vector<std::string> summary(const ConfigCalHistory& history)
{
    std::vector<std::string> rows;
    for (Configurable* child : history.children()) {
        auto& record = static_cast<ConfigCalRecord&>(*child);
        std::ostringstream row;
        row << record.Time().get().get() << " " << record.Type().get() << " " << record.Ch4zero().get();
        rows.push_back(row.str());
    }
    return rows;
}

// The last record of each kind at its time is kept, span first; kinds match by containing, times exactly.
TEST(TolvanCalHistory, ClearOldRecordsKeepsTheLastMatchOfEachKindSpanFirst)
{
    ConfigCalHistory history;
    add_record(history, 100, "CH4 Zero", 0.1f);
    add_record(history, 200, "CH4 Span", 0.2f);
    add_record(history, 100, "CH4 Zero", 0.3f);      // same instant, later in the list: kept
    add_record(history, 300, "CH4 Zero", 0.4f);      // newer, but not the last zero: dropped
    add_record(history, 200, "", 0.5f);              // no type: skipped
    add_record(history, 100, "Other step", 0.6f);    // neither kind
    history.ClearOldRecords(Timestamp(100), Timestamp(200));
    EXPECT_EQ(summary(history), (std::vector<std::string>{"200 CH4 Span 0.2", "100 CH4 Zero 0.3"}));
    for (Configurable* child : history.children())
        EXPECT_EQ(child->parent(), &history);
    // A record is found by its time alone.
    EXPECT_EQ(history.find(ConfigCalRecord(Timestamp(100), "CH4 Span", 9, 9)), history.children().back());
    EXPECT_EQ(history.find(ConfigCalRecord(Timestamp(101), "CH4 Zero", 0.3f, 1)), nullptr);

    ConfigCalHistory other;
    add_record(other, 50, "manual CH4 Span (gas 2 ppm)", 0.7f);
    add_record(other, 60, "auto CH4 Zero", 0.8f);
    add_record(other, 60.0001, "CH4 Zero", 0.9f);
    other.ClearOldRecords(Timestamp(60), Timestamp(50));
    EXPECT_EQ(summary(other), (std::vector<std::string>{"50 manual CH4 Span (gas 2 ppm) 0.7", "60 auto CH4 Zero 0.8"}));
    other.ClearOldRecords(Timestamp(1), Timestamp(2));
    EXPECT_TRUE(other.children().empty());
}

TEST(TolvanCalHistory, CalClearsWithItsOwnLastTimes)
{
    DocTolvan doc;
    ConfigCal& cal = doc.Conf().Cal();
    reply(doc, envelope("tolvan", "<cal><ch4lastzero>2020-03-01 12:00:00</ch4lastzero><history>"
                                  "<record><time>2020-03-01 12:00:00</time><type>CH4 Zero</type><ch4zero>0.25</ch4zero></record>"
                                  "<record><time>2020-03-02 12:00:00</time><type>CH4 Zero</type><ch4zero>0.5</ch4zero></record>"
                                  "<record><time>2020-03-03 12:00:00</time><type>CH4 Span</type><ch4span>1.5</ch4span></record>"
                                  "</history></cal>"));
    ASSERT_EQ(cal.History().children().size(), 3u);
    cal.ClearOldHistoryRecords();
    ASSERT_EQ(cal.History().children().size(), 1u);
    auto& kept = static_cast<ConfigCalRecord&>(*cal.History().children().front());
    EXPECT_FLOAT_EQ(kept.Ch4zero().get(), 0.25f);
    EXPECT_EQ(kept.name(), "record");
}

TEST(TolvanCalHistory, CopiesCarryValuesAndName)
{
    ConfigCalRecord original("step");
    original.Time().set(Timestamp(42));
    original.Type().set("CH4 Span");
    original.Ch4span().set(1.5f);
    original._set_changed(false);
    original.Ch4zero().set(0.5f);

    ConfigCalRecord copy(original);
    EXPECT_EQ(std::make_tuple(copy.name(), copy.Time().get().get(), copy.Type().get(), copy.Ch4zero().get(),
                              copy.Ch4span().get(), copy.Ch4zero().has_changed(), copy.Ch4span().has_changed()),
              std::make_tuple("step", 42.0, "CH4 Span", 0.5f, 1.5f, true, false));

    ConfigCalHistory a, b;
    add_record(b, 7, "CH4 Zero", 0.7f);
    a = b;
    EXPECT_EQ(summary(a), summary(b));
}

// --- events ---

/// Writes down every call as a line of text.
struct Recorder : DocTolvanListener {
    std::vector<std::string> calls;
    std::time_t set_time = 0;

    template <class... Args>
    void note(const char* name, const Args&... args)
    {
        std::ostringstream line;
        line << name;
        ((line << ' ' << args), ...);
        calls.push_back(line.str());
    }

    void OnTempRange(int index) override { note("OnTempRange", index); }
    void OnRate(int hz) override { note("OnRate", hz); }
    void OnCH4Zero() override { note("OnCH4Zero"); }
    void OnCH4Span(float concentration) override { note("OnCH4Span", concentration); }
    void OnCalCommit() override { note("OnCalCommit"); }
    void OnCalRollback() override { note("OnCalRollback"); }
    void OnCalAbort() override { note("OnCalAbort"); }
    void OnCalChanged() override { note("OnCalChanged"); }
    void OnPoll() override { note("OnPoll"); }
    void OnPollTest() override { note("OnPollTest"); }
    void OnLineLock() override { note("OnLineLock"); }
    void OnLogUSBStart() override { note("OnLogUSBStart"); }
    void OnLogUSBStop() override { note("OnLogUSBStop"); }
    void OnTopHeater(int64_t p, int c, long on, long off, float dt) override { note("OnTopHeater", p, c, on, off, dt); }
    void OnBottomHeater(int64_t p, int c, int64_t l, long on, long off) override
    {
        note("OnBottomHeater", p, c, l, on, off);
    }
    void OnSpinMirror(int c, int64_t l, long on, long off, int64_t d, long r) override
    {
        note("OnSpinMirror", c, l, on, off, d, r);
    }
    void OnLineLockChanged(int cc, int64_t cd, int bc, int64_t bd, float ct, float bt) override
    {
        note("OnLineLockChanged", cc, cd, bc, bd, ct, bt);
    }
    void OnSetTime(std::time_t t) override { set_time = t, note("OnSetTime"); }
    void OnTimeZone(const std::string& zone) override { note("OnTimeZone", zone); }
    void OnPTP(int index) override { note("OnPTP", index); }
    void OnNetwork(const std::string& name, bool automatic, const SocketAddress& ip, const SocketAddress& mask,
                   const SocketAddress& gw) override
    {
        note("OnNetwork", name, automatic ? "auto" : "manual", ip, mask, gw);
    }
    void OnAux(unsigned n, int type, float a0, float a1, float a2, float a3) override
    {
        note("OnAux", n, type, a0, a1, a2, a3);
    }
    void OnFactoryChanged() override { note("OnFactoryChanged"); }
    void OnFactoryCommit() override { note("OnFactoryCommit"); }
    void OnFactoryRollback() override { note("OnFactoryRollback"); }
    void OnReboot() override { note("OnReboot"); }
    void OnConfigChanged() override { note("OnConfigChanged"); }
};

/// Serves one message on a clean document and returns the calls it caused.
std::vector<std::string> serve(CleanDoc& doc, Recorder& recorder, const std::string& body)
{
    doc.SetListener(&recorder);
    EXPECT_EQ(serve(doc, envelope("tolvan", body)), "") << body;
    return recorder.calls;
}

using Calls = std::vector<std::string>;

TEST(TolvanEvents, EachSectionCallsItsOwnOperation)
{
    const Calls span{"OnCalChanged", "OnCH4Span 2.5"};
    const std::pair<const char*, Calls> cases[] = {
        {"", {}}, {"<output><status>true</status><dataclocksync>true</dataclocksync></output>", {}},
        {"<output><rate>10</rate></output>", {"OnRate 10", "OnConfigChanged"}},
        {"<box><usb><zip>true</zip></usb></box>", {"OnConfigChanged"}}, {"<cal><ch4span>1.1</ch4span></cal>", {"OnCalChanged"}},
        {"<cfg><temprange>high</temprange></cfg>", {"OnTempRange 1", "OnConfigChanged"}},
        {"<cfg><heater><top><heaterpower>50</heaterpower><deltat>1.5</deltat></top></heater></cfg>",
         {"OnTopHeater 50 0 0 0 1.5", "OnConfigChanged"}},
        {"<cfg><heater><bottom><control>off</control><ontime>01:00</ontime></bottom></heater></cfg>",
         {"OnBottomHeater 100 2 40 3600 0", "OnConfigChanged"}},
        {"<cfg><spinmirror><repeatinterval>01:15</repeatinterval><duration>45</duration></spinmirror></cfg>",
         {"OnSpinMirror 0 40 0 0 45 4500", "OnConfigChanged"}},
        {"<cfg><linelock><lasercooler><control>manual</control><temp>30.5</temp></lasercooler></linelock></cfg>",
         {"OnLineLockChanged 1 0 1 0 30.5 22"}},
        {"<cfg><clock><ptp>preferred</ptp></clock></cfg>", {"OnPTP 2"}},
        {"<factory><dither>5</dither></factory>", {"OnFactoryChanged"}},
        {"<cfg><network><configuration>manual</configuration><ipaddress>10.0.0.2</ipaddress></network></cfg>",
         {"OnNetwork ch4-xxxx manual 10.0.0.2 255.255.255.0 192.168.1.1"}},
        {"<cfg><aux3><type>steinhart</type><a2>0.5</a2></aux3></cfg>", {"OnAux 3 1 0 1 0.5 0", "OnConfigChanged"}},
        {"<cfg><dac4><low>1</low></dac4></cfg>", {"OnConfigChanged"}}, {"<cfg><sdmaddress>2</sdmaddress></cfg>", {}},
        {"<factory><cmd><rollback>true</rollback><commit>true</commit></cmd></factory>",
         {"OnFactoryCommit", "OnFactoryRollback", "OnFactoryChanged"}},
        {"<cmd><poll>false</poll></cmd>", {}}, {"<cpld><ver>3</ver></cpld>", {}},
        // The span gets the concentration of the same message, wherever it stands.
        {"<cal><ch4spanconc>2.5</ch4spanconc></cal><cmd><ch4span>true</ch4span></cmd>", span},
        {"<cmd><ch4span>true</ch4span></cmd><cal><ch4spanconc>2.5</ch4spanconc></cal>", span},
    };
    for (const auto& [body, expected] : cases) {
        CleanDoc doc;
        Recorder recorder;
        EXPECT_EQ(serve(doc, recorder, body), expected) << body;
    }
}

// Sections, and the commands among themselves, come in a fixed order whatever the message order.
TEST(TolvanEvents, FixedOrder)
{
    CleanDoc doc;
    Recorder recorder;
    const Calls calls = serve(doc, recorder,
                              "<cmd><reboot>true</reboot><poll>true</poll></cmd>"
                              "<factory><cmd><commit>true</commit></cmd></factory>"
                              "<cfg><aux8><a0>1</a0></aux8><aux1><a0>2</a0></aux1>"
                              "<network><name>n</name></network><clock><ptp>slaveonly</ptp></clock>"
                              "<linelock><laserblock><daccount>9</daccount></laserblock></linelock>"
                              "<spinmirror><control>on</control></spinmirror>"
                              "<heater><top><control>off</control></top><bottom><heaterpower>10</heaterpower></bottom></heater>"
                              "<temprange>low</temprange></cfg>"
                              "<output><rate>0</rate></output><cal><ch4zero>0.5</ch4zero></cal>");
    EXPECT_EQ(calls, (Calls{"OnCalChanged", "OnRate 0", "OnTempRange 0", "OnBottomHeater 10 0 40 0 0",
                            "OnTopHeater 100 2 0 0 0", "OnSpinMirror 1 40 0 0 30 1800",
                            "OnLineLockChanged 0 0 1 9 25 22", "OnPTP 1",
                            "OnNetwork n auto 192.168.1.95 255.255.255.0 192.168.1.1", "OnAux 1 0 2 1 0 0",
                            "OnAux 8 0 1 1 0 0", "OnFactoryCommit", "OnFactoryChanged", "OnConfigChanged",
                            "OnPoll", "OnReboot"}));

    CleanDoc commands;
    Recorder heard;
    EXPECT_EQ(serve(commands, heard,
                    "<cmd><reboot>true</reboot><logusbstop>true</logusbstop><logusbstart>true</logusbstart>"
                    "<calabort>true</calabort><calrollback>true</calrollback><calcommit>true</calcommit>"
                    "<ch4span>true</ch4span><ch4zero>true</ch4zero><polltest>true</polltest>"
                    "<poll>true</poll><linelock>true</linelock></cmd>"),
              (Calls{"OnLineLock", "OnPoll", "OnPollTest", "OnCH4Zero", "OnCH4Span 2", "OnCalCommit", "OnCalRollback",
                     "OnCalAbort", "OnLogUSBStart", "OnLogUSBStop", "OnReboot"}));
}

TEST(TolvanEvents, CommandsLastOneMessage)
{
    CleanDoc doc;
    Recorder recorder;
    serve(doc, recorder, "<cmd><poll>true</poll></cmd><factory><cmd><commit>true</commit></cmd></factory>");
    EXPECT_TRUE(doc.Conf().Cmd().Poll().get());
    doc._set_changed(false);
    recorder.calls.clear();
    // The reset of the commands is itself a change, but no command is true any more.
    EXPECT_EQ(serve(doc, recorder, ""), (Calls{"OnFactoryChanged"}));
    EXPECT_FALSE(doc.Conf().Cmd().Poll().get());
    EXPECT_FALSE(doc.Conf().Factory().Cmd().Commit().get());

    // Without a listener the message is still applied and the commands reset.
    DocTolvan alone;
    alone.Conf().Cmd().Reboot().set(true);
    serve(alone, envelope("tolvan", "<cfg><sdmaddress>4</sdmaddress></cfg>"));
    EXPECT_FALSE(alone.Conf().Cmd().Reboot().get());
    EXPECT_EQ(alone.Conf().Cfg().Sdmaddress().get(), 4);
}

TEST(TolvanEvents, ClockTimeIsHandedOnAsTimeT)
{
    CleanDoc doc;
    Recorder recorder;
    EXPECT_EQ(serve(doc, recorder, "<cfg><clock><date>2024-05-06</date><time>07:08:09</time></clock></cfg>"),
              (Calls{"OnSetTime"}));
    EXPECT_EQ(recorder.set_time, doc.Conf().Cfg().Clock().TimeDate());

    EXPECT_THROW(serve(doc, envelope("tolvan", "<cfg><clock><date>2024/05/06</date></clock></cfg>")),
                 std::runtime_error);
}

}  // namespace
