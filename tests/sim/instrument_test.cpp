// The simulated instruments without a network, time stepped by hand, read back through a Connector;
// the line format beneath them.

#include <gtest/gtest.h>

#include <cmath>

#include "libskarn/doctolvan.h"
#include "sim/data_line.h"
#include "sim/sim_instrument.h"
#include "sim/spectrum.h"
#include "sim_process.h"

namespace {

const std::string SELECT_ALL = "<arvex><tolvan><output><status>true</status><waveforms>true</waveforms>"
                               "<dataclock>true</dataclock><dataclocksync>true</dataclocksync></output></tolvan></arvex>";
const std::string ZERO = "<arvex><tolvan><cmd><ch4zero>true</ch4zero></cmd></tolvan></arvex>";

std::unique_ptr<SimInstrument> make(const std::string& model)
{
    auto sim = SimInstrument::Make(model, "bench");
    EXPECT_NE(sim, nullptr);
    return sim;
}

// The value of one node: `path` is the tags inside the model, innermost last.
std::string query_item(SimInstrument& sim, const std::string& model, const std::vector<std::string>& path)
{
    std::string open, close;
    for (const std::string& tag : path) {
        open += "<" + tag + ">";
        close = "</" + tag + ">" + close;
    }
    return sim.Serve("<arvex><" + model + ">" + open + "&query_item;" + close + "</" + model + "></arvex>").reply;
}

// Steps time from `from` to `to` as the server's ticks do.
void run(SimInstrument& sim, double from, double to, double step = 0.02)
{
    const int steps = int(std::lround((to - from) / step));
    for (int i = 0; i <= steps; ++i)
        sim.Advance(from + i * step);
}

void feed(Connector& link, const std::string& text)
{
    for (const std::string& line : split_lines(text))
        link.HandleData(line + "\n");
}

double record_time(const std::string& line)
{
    const auto f = fields(line);
    return std::stod(f[2]) + std::stod(f[3]) / 1e9;
}

TEST(SimTolvan, TheSelectionPicksTheHeadersAndTheRateThePace)
{
    auto sim = make("tolvan");
    EXPECT_EQ(records(sim->Headers(), "DATAU").size(), 1u);
    EXPECT_EQ(records(sim->Headers(), "DATAH").size(), 1u);
    EXPECT_TRUE(records(sim->Headers(), "DATASTATH").empty());
    auto served = sim->Serve(SELECT_ALL);
    EXPECT_EQ(served.reply, "");
    EXPECT_EQ(served.changes, "<arvex><tolvan><output><waveforms>true</waveforms><status>true</status>"
                              "<dataclock>true</dataclock><dataclocksync>true</dataclocksync></output></tolvan></arvex>");
    std::string lines = sim->TakeLines();
    for (const char* header : {"DATAU", "DATAH", "DATASTATH", "DATADIAGH", "DATACLOCKSYNCH"})
        EXPECT_EQ(records(lines, header).size(), 1u) << header;
    EXPECT_EQ(lines, sim->Headers());
    Connector link(nullptr, "bench", "tolvan");
    feed(link, lines);
    // The same selection again changes nothing and repeats nothing.
    EXPECT_EQ(sim->Serve(SELECT_ALL).changes, "");
    EXPECT_EQ(sim->TakeLines(), "");

    ASSERT_TRUE(sim->SetRate(10));
    run(*sim, 0, 1.0);
    lines = sim->TakeLines();
    const auto data = records(lines, "DATA");
    ASSERT_EQ(data.size(), 11u);  // at 0, 0.1, ... 1.0
    for (size_t i = 1; i < data.size(); ++i)
        EXPECT_NEAR(record_time(data[i]) - record_time(data[i - 1]), 0.1, 1e-6);
    for (const char* each_second : {"DATASTAT", "DATACLOCK", "DATACLOCKSYNC"})
        EXPECT_EQ(records(lines, each_second).size(), 2u) << each_second;
    for (const char* waveform : {"DATAR", "DATAS", "DATARDC", "DATASDC"}) {
        EXPECT_EQ(records(lines, waveform).size(), 11u) << waveform;
        const auto f = fields(records(lines, waveform).at(0));
        ASSERT_EQ(f.size(), 2u + 100u + 1u) << waveform;
        // A waveform is stamped with the laser's temperature; the DC levels are fractions.
        const bool dc = std::string(waveform).back() == 'C';
        EXPECT_TRUE(dc || f[1] == "25.0000") << f[1];
        for (size_t i = 2; dc && i < 102; ++i)
            EXPECT_TRUE(std::stod(f[i]) > 0.0 && std::stod(f[i]) < 1.0) << waveform << " point " << i;
    }
    for (const std::string& line : split_lines(lines)) {
        if (line.rfind("DATACLOCK\t", 0) != 0) {
            EXPECT_TRUE(Connector::VerifyCheckSum(line + "\n")) << line;
        }
    }
    feed(link, lines);
    EXPECT_NEAR(link.VarNumeric("bench:DATASTAT:LCTACTUAL"), 25.0, 1e-3);
    EXPECT_NEAR(link.VarNumeric("bench:DATA:CH4"), 2.0, 0.2);
    EXPECT_NEAR(link.VarNumeric("bench:DATA:PRESSURE"), 101.3, 1.0);
    EXPECT_EQ(link.Unit("DATAU").size(), link.Header("DATAH").size());
    EXPECT_EQ(link.Header("DATAH").back(), "CHK");
    EXPECT_EQ(link.Header("DATADIAGH").size(), 8u);

    sim->Serve("<arvex><tolvan><output><status>false</status></output></tolvan></arvex>");
    lines = sim->TakeLines();
    EXPECT_EQ(records(lines, "DATAH").size(), 1u);
    EXPECT_TRUE(records(lines, "DATASTATH").empty());
}

// A stall gives no burst; at rate 0, a poll sends one record and a poll test a test record.
TEST(SimTolvan, AStallGivesNoBurstAndPollsOneRecordEach)
{
    auto sim = make("tolvan");
    run(*sim, 0, 1.0);
    EXPECT_EQ(records(sim->TakeLines(), "DATA").size(), 41u);
    sim->Advance(100.0);
    EXPECT_LE(records(sim->TakeLines(), "DATA").size(), 41u);
    sim->Advance(100.5);
    EXPECT_EQ(records(sim->TakeLines(), "DATA").size(), 20u);

    ASSERT_TRUE(sim->SetRate(0));
    run(*sim, 100.52, 102.5);
    EXPECT_TRUE(records(sim->TakeLines(), "DATA").empty());

    auto served = sim->Serve("<arvex><tolvan><cmd><poll>true</poll></cmd></tolvan></arvex>");
    EXPECT_EQ(served.changes, "");  // a command is no change of the document
    std::string lines = sim->TakeLines();
    ASSERT_EQ(records(lines, "DATA").size(), 1u);
    EXPECT_TRUE(Connector::VerifyCheckSum(records(lines, "DATA")[0] + "\n"));

    Connector link(nullptr, "bench", "tolvan");
    for (int n = 1; n <= 2; ++n) {
        sim->Serve("<arvex><tolvan><cmd><polltest>true</polltest></cmd></tolvan></arvex>");
        lines = sim->TakeLines();
        ASSERT_EQ(records(lines, "DATATESTH").size(), 1u);
        ASSERT_EQ(records(lines, "DATATEST").size(), 1u);
        EXPECT_TRUE(std::regex_search(lines, std::regex("\t0x[0-9a-f]{4}\t"))) << lines;
        feed(link, lines);
        EXPECT_EQ(link.VarNumeric("bench:DATATEST:COUNT"), n);
    }
    // 25 °C of the 50 °C that the cooler's DAC spans.
    EXPECT_NEAR(link.VarNumeric("bench:DATATEST:COOLERDAC"), 65535 / 2, 2);
    EXPECT_EQ(query_item(*sim, "tolvan", {"cmd", "polltest"}), "false");
}

TEST(SimTolvan, TheLaserFollowsTheCoolerWithALagAndLocksOnTheLine)
{
    auto sim = make("tolvan");
    sim->Serve("<arvex><tolvan><output><status>true</status></output></tolvan></arvex>");
    Connector link(nullptr, "bench", "tolvan");
    feed(link, sim->TakeLines());
    sim->Serve("<arvex><tolvan><cfg><linelock><lasercooler><temp>30</temp></lasercooler></linelock></cfg></tolvan></arvex>");
    run(*sim, 0, 3.0, 0.1);
    feed(link, sim->TakeLines());
    EXPECT_EQ(link.VarNumeric("bench:DATASTAT:LCTSET"), 30);
    // One time constant: 63 % of the way.
    EXPECT_NEAR(link.VarNumeric("bench:DATASTAT:LCTACTUAL"), 25 + 5 * (1 - std::exp(-1.0)), 1e-3);
    EXPECT_EQ(link.VarNumeric("bench:DATADIAG:LASERUNLOCKED"), 1);
    run(*sim, 3.0, 40.0, 0.5);
    feed(link, sim->TakeLines());
    EXPECT_NEAR(link.VarNumeric("bench:DATASTAT:LCTACTUAL"), 30, 1e-3);
    EXPECT_EQ(link.VarNumeric("bench:DATADIAG:LASERUNLOCKED"), 0);

    // The line lock puts the laser on the reference line.
    sim->Serve("<arvex><tolvan><cfg><linelock><lasercooler><control>manual</control><temp>3</temp>"
               "</lasercooler></linelock></cfg></tolvan></arvex>");
    sim->TakeLines();
    auto served = sim->Serve("<arvex><tolvan><cmd><linelock>true</linelock></cmd></tolvan></arvex>");
    EXPECT_NE(served.changes.find("<control>auto</control>"), std::string::npos) << served.changes;
    const double lock = SimSpectrum::LockTemperature();
    EXPECT_NEAR(std::stod(query_item(*sim, "tolvan", {"cfg", "linelock", "lasercooler", "temp"})), lock, 1e-4);
    // That line is a peak of the reference.
    EXPECT_GT(SimSpectrum::Reference(lock), 0.9);
    EXPECT_GT(SimSpectrum::Reference(lock), SimSpectrum::Reference(lock - 0.0165));
    EXPECT_GT(SimSpectrum::Reference(lock), SimSpectrum::Reference(lock + 0.0165));
    EXPECT_EQ(records(sim->TakeLines(), "DATAEVENT").size(), 1u);
}

TEST(SimTolvan, ZeroAndSpanWriteTheCalibrationAndItsHistoryRollbackUndoesThem)
{
    auto sim = make("tolvan");
    DocTolvan replica;
    const auto apply = [&replica](const std::string& text) {
        std::istringstream in(text);
        std::ostringstream ignored;
        replica.configure(in, ignored);
    };
    apply(sim->Serve("<arvex>&query;</arvex>").reply);
    auto served = sim->Serve(ZERO);
    EXPECT_EQ(served.reply, "");
    EXPECT_EQ(served.changes.find("<cmd>"), std::string::npos) << served.changes;
    EXPECT_NE(served.changes.find("<type>CH4 Zero</type>"), std::string::npos) << served.changes;
    EXPECT_EQ(records(sim->TakeLines(), "DATAEVENT").at(0).rfind("DATAEVENT\tCH4ZERO\tzero ", 0), 0u);
    apply(served.changes);
    const std::string zero_value = query_item(*sim, "tolvan", {"cal", "ch4zero"});
    EXPECT_EQ(sim->Serve("<arvex><tolvan><cmd><calcommit>true</calcommit></cmd></tolvan></arvex>").changes, "");
    apply(sim->Serve("<arvex><tolvan><cal><ch4spanconc>2.5</ch4spanconc></cal><cmd><ch4span>true</ch4span></cmd>"
                     "</tolvan></arvex>").changes);
    ConfigCal& cal = replica.Conf().Cal();
    EXPECT_EQ(cal.Ch4spanconc().get(), 2.5f);
    ASSERT_EQ(cal.History().children().size(), 2u);
    auto& zero = static_cast<ConfigCalRecord&>(*cal.History().children().front());
    auto& span = static_cast<ConfigCalRecord&>(*cal.History().children().back());
    EXPECT_EQ(zero.Type().get(), "CH4 Zero");
    EXPECT_EQ(span.Type().get(), "CH4 Span");
    EXPECT_EQ(zero.Time().get().get(), cal.Ch4lastzero().get().get());
    EXPECT_EQ(span.Time().get().get(), cal.Ch4lastspan().get().get());
    EXPECT_GT(cal.Ch4lastzero().get().get(), 0);
    EXPECT_EQ(zero.Ch4zero().get(), cal.Ch4zero().get());
    EXPECT_EQ(span.Ch4span().get(), cal.Ch4span().get());
    EXPECT_NE(cal.Ch4zero().get(), 0.0f);
    EXPECT_NE(cal.Ch4span().get(), 1.0f);
    // What went to the replicas is what the instrument holds.
    EXPECT_EQ(without_clock_time(compact_query(replica)), without_clock_time(sim->Serve("<arvex>&query;</arvex>").reply));

    // A rollback goes back to the committed calibration, and so does a restart.
    served = sim->Serve("<arvex><tolvan><cmd><calrollback>true</calrollback></cmd></tolvan></arvex>");
    EXPECT_NE(served.changes.find("<ch4span>1</ch4span>"), std::string::npos) << served.changes;
    EXPECT_EQ(query_item(*sim, "tolvan", {"cal", "ch4span"}), "1");
    EXPECT_EQ(query_item(*sim, "tolvan", {"cal", "ch4zero"}), zero_value);
    const std::string history = query_item(*sim, "tolvan", {"cal", "history"});
    EXPECT_NE(history.find("CH4 Zero"), std::string::npos) << history;
    EXPECT_EQ(history.find("CH4 Span"), std::string::npos) << history;
    sim->Serve("<arvex><tolvan><cal><ch4zero>0.5</ch4zero></cal></tolvan></arvex>");
    sim->Restart();
    EXPECT_EQ(query_item(*sim, "tolvan", {"cal", "ch4zero"}), zero_value);
}


// What every model serves alike.
class SimEveryModel : public ::testing::TestWithParam<const char*> {
protected:
    std::string In(const std::string& inner) const
    {
        return "<arvex><" + tag() + ">" + inner + "</" + tag() + "></arvex>";
    }
    std::string tag() const { return GetParam() == std::string("tolvan") ? "tolvan" : "morvik"; }
};

TEST_P(SimEveryModel, FactoryRollbackAndReboot)
{
    auto sim = make(GetParam());
    sim->Serve(In("<factory><serialnumber>ch4-0042</serialnumber><cmd><commit>true</commit></cmd></factory>"));
    sim->Serve(In("<factory><serialnumber>ch4-9999</serialnumber></factory>"));
    sim->TakeLines();
    auto served = sim->Serve(In("<factory><cmd><rollback>true</rollback></cmd></factory>"));
    EXPECT_EQ(served.changes, In("<factory><serialnumber>ch4-0042</serialnumber></factory>"));
    EXPECT_EQ(query_item(*sim, tag(), {"serialnumber"}), "ch4-0042");
    EXPECT_EQ(records(sim->TakeLines(), "DATAEVENT").at(0), "DATAEVENT\tFACTORYROLLBACK\tfactory values restored");
    EXPECT_EQ(query_item(*sim, tag(), {"factory", "cmd", "commit"}), "false");

    // A reboot is asked for and announced.
    EXPECT_FALSE(sim->Serve(In("<name>x</name>")).reboot);
    served = sim->Serve(In("<cmd><reboot>true</reboot></cmd>"));
    EXPECT_TRUE(served.reboot);
    EXPECT_EQ(served.changes, "");
    EXPECT_EQ(records(sim->TakeLines(), "DATAEVENT").at(0), "DATAEVENT\tREBOOT\trestarting");
}

TEST_P(SimEveryModel, BadMessagesChangeNothingAndSettingsAreKept)
{
    auto sim = make(GetParam());
    const std::string before = sim->Serve("<arvex>&query;</arvex>").reply;
    const std::string bad[] = {
        "<",
        "<arvex>",
        "<arvex><tolvan><output><rate>fast</rate></output></tolvan></arvex>",
        "<arvex><" + tag() + "><name>&query_nonsense;</name></" + tag() + "></arvex>",
        "<arvex><" + tag() + "></arvex>",
        "<arvex><nomodel><a><b/></a></nomodel></arvex>",
        "<arvex><" + tag() + "><cfg><network><ipaddress>999.1.1.1</ipaddress></network></cfg></" + tag() + "></arvex>",
        "<" + std::string(10000, 'a') + ">",
        "<arvex>" + std::string(2000, '<') + "</arvex>",
        std::string("<\0\xff\xfe", 4),
    };
    for (const std::string& message : bad) {
        const auto served = sim->Serve(message);
        EXPECT_EQ(served.reply.find('\n'), std::string::npos) << message.substr(0, 80);
        EXPECT_EQ(served.changes, "") << message.substr(0, 80);
        EXPECT_FALSE(served.reboot);
    }
    EXPECT_EQ(without_clock_time(sim->Serve("<arvex>&query;</arvex>").reply), without_clock_time(before));

    // Clock and network settings are kept; the clock runs on from the time it was given.
    sim->Advance(12.34);
    sim->TakeLines();
    auto served = sim->Serve(In("<cfg><clock><time>04:05:06</time><date>2031-02-03</date><zone>Asia/Tokyo</zone>"
                                "<ptp>slaveonly</ptp></clock><network><ipaddress>10.1.2.3</ipaddress></network></cfg>"));
    EXPECT_NE(served.changes.find("<time>04:05:06</time><date>2031-02-03</date>"), std::string::npos);
    EXPECT_NE(served.changes.find("<ipaddress>10.1.2.3</ipaddress>"), std::string::npos);
    const std::string events = sim->TakeLines();
    EXPECT_EQ(records(events, "DATAEVENT").size(), 4u) << events;  // time, zone, PTP, network

    EXPECT_EQ(query_item(*sim, tag(), {"cfg", "clock", "time"}), "04:05:06");
    sim->Advance(14.34);
    sim->TakeLines();
    const std::pair<const char*, const char*> kept[] = {
        {"time", "04:05:08"}, {"date", "2031-02-03"}, {"ptp", "slaveonly"}, {"zone", "Asia/Tokyo"}};
    for (const auto& [item, value] : kept)
        EXPECT_EQ(query_item(*sim, tag(), {"cfg", "clock", item}), value);
    EXPECT_EQ(query_item(*sim, tag(), {"cfg", "network", "ipaddress"}), "10.1.2.3");

    // A time that cannot be read leaves the clock running.
    served = sim->Serve(In("<cfg><clock><time>25-61</time></clock></cfg>"));
    EXPECT_EQ(query_item(*sim, tag(), {"cfg", "clock", "time"}), "04:05:08");
}

INSTANTIATE_TEST_SUITE_P(Models, SimEveryModel, ::testing::Values("tolvan", "morvik", "sarnel"));

TEST(SimMorvik, StreamsDataAndStatusAtItsRate)
{
    auto sim = make("morvik");
    EXPECT_FALSE(sim->SetRate(41));
    ASSERT_TRUE(sim->SetRate(5));
    EXPECT_EQ(sim->DefaultPort(), 4420);
    for (const char* header : {"DATAU", "DATAH", "DATASTATH", "DATADIAGH"})
        EXPECT_EQ(records(sim->Headers(), header).size(), 1u) << header;
    run(*sim, 0, 2.0);
    const std::string lines = sim->TakeLines();
    EXPECT_EQ(records(lines, "DATA").size(), 11u);
    EXPECT_EQ(records(lines, "DATASTAT").size(), 3u);
    EXPECT_EQ(records(lines, "DATACLOCK").size(), 3u);

    Connector link(nullptr, "base", "morvik");
    feed(link, sim->Headers() + lines);
    EXPECT_NEAR(link.VarNumeric("base:DATA:CH4"), 2.0, 0.2);
    // No head is named yet; naming it clears the bit.
    EXPECT_EQ(link.VarNumeric("base:DATADIAG:HEADMISSING"), 1);
    sim->Serve("<arvex><morvik><cfg><head>tolvan-1</head></cfg></morvik></arvex>");
    run(*sim, 2.02, 3.0);
    feed(link, sim->TakeLines());
    EXPECT_EQ(link.VarNumeric("base:DATADIAG:HEADMISSING"), 0);
}

TEST(SimDataLine, SumsCheckAsTheLinkChecksThem)
{
    // Small sums need their leading zeros, high bytes count unsigned, and the sum wraps at 256.
    const std::vector<std::string> cases[] = {
        {"DATA", "1", "2", "3"}, {"D"}, {"DATA", "\xff\xfe\xfd"}, {"DATASTAT", std::string(300, '9')},
        {"DATA", "-0.001", "1e+06", "nan"},
    };
    for (const auto& c : cases) {
        DataLine line(c[0]);
        for (size_t i = 1; i < c.size(); ++i)
            line.Add(c[i]);
        std::string checked = line.Checked();
        EXPECT_TRUE(Connector::VerifyCheckSum(checked)) << checked;
        checked[0] = char(checked[0] + 1);
        EXPECT_FALSE(Connector::VerifyCheckSum(checked)) << checked;
    }
    EXPECT_EQ(DataLine("DATA").Add("1").Add("2").Add("3").Checked(), "DATA\t1\t2\t3\t212\n");
    EXPECT_EQ(DataLine("DATAH").Add("A").Plain(), "DATAH\tA\n");
}

}  // namespace
