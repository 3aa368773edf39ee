// The simulator over standard input, and each model end to end against the real Connector.

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "sim_process.h"

namespace {

// `sondar-sim --stdio` answers one line per line in. The line end that ends a choice error stays on
// the line as \\n; nothing clears the flags, so a fresh document answers &query_changes; whole.
TEST(SimStdio, OneLineOutPerLineIn)
{
    const std::string name = "<arvex><tolvan><name>&query_item;</name></tolvan></arvex>\n";
    const std::string morvik = "<arvex><morvik><factory><serialnumber>&query_item;</serialnumber></factory></morvik>"
                               "</arvex>\n<arvex><sarnel><name>&query_item;</name></sarnel></arvex>\n"
                               "<arvex>&query_changes;</arvex>\n";
    const std::string query = "<arvex>&query;</arvex>\n";
    const struct {
        const char* model;
        std::string input;
        std::vector<std::string> output;
    } cases[] = {
        {"tolvan", query + name + "<arvex><tolvan><name>lab bench</name></tolvan></arvex>\n" + name +
                       "<arvex><tolvan><output><rate>fast</rate></output></tolvan></arvex>\n",
         {compact_query(DocTolvan()), "", "", "lab bench", "<Error Param=\"rate\">invalid option: fast\\n</Error>"}},
        {"morvik", morvik, {"ch4-base-XXXX", "", compact_query(DocMorvik())}},
        {"sarnel", morvik, {"ch4-base-XXXX", "", compact_query(DocMorvik())}},
        {"dravik", query, {compact_query(DocDravik())}},
        {"quenta", query, {compact_query(DocQuenta())}},
        {"halden", query, {compact_query(DocHalden())}},
        {"bremmel", query, {compact_query(DocBremmel())}},
        {"ostrel", query, {compact_query(DocOstrel())}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.model);
        QProcess sim;
        sim.start(SONDAR_SIM, {"--stdio", "--model", c.model});
        ASSERT_TRUE(sim.waitForStarted(TIMEOUT_MS));
        sim.write(c.input.data(), qint64(c.input.size()));
        sim.closeWriteChannel();
        ASSERT_TRUE(sim.waitForFinished(TIMEOUT_MS));
        EXPECT_EQ(sim.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(sim.exitCode(), 0);
        std::vector<std::string> lines = split_lines(sim.readAllStandardOutput().toStdString()), expected = c.output;
        for (std::vector<std::string>* each : {&lines, &expected})
            for (std::string& line : *each)
                line = without_clock_time(line);
        EXPECT_EQ(lines, expected);
    }
}

class SimModelLink : public ::testing::Test {
protected:
    void SetUp() override
    {
        Connector::SetMessageBox([](QWidget*, const QString& title, const QString& text) {
            ADD_FAILURE() << title.toStdString() << ": " << text.toStdString();
        });
    }
    void TearDown() override
    {
        // The registry keeps the link after the test: the listener leaves before it is gone.
        if (link)
            link->UnRegisterListener(&heard);
        Connector::SetMessageBox([](QWidget*, const QString&, const QString&) {});
    }

    /// Starts the model's simulator and links to it as the program does, listening to `records`;
    /// a bare client checks the sums of a line of each of `sums`.
    void Start(const std::string& model, const std::string& name, const std::vector<std::string>& records,
               const std::vector<std::string>& sums)
    {
        sim = std::make_unique<SimProcess>(QStringList{"--model", QString::fromStdString(model), "--name",
                                                        QString::fromStdString(name)});
        ASSERT_TRUE(sim->WaitListening()) << model;
        link = Connector::Factory(nullptr, name, model);
        for (const std::string& record : records)
            link->RegisterListener(record, &heard);
        link->RegisterListener("DATAEVENT", &heard);
        link->Connect("127.0.0.1", 0, sim->port);
        for (const std::string& record : records)
            ASSERT_TRUE(heard.WaitFor(record)) << model << " " << record;
        ExpectMirrored(model == "ostrel" ? "" : name);
        ExpectGoodSums(sums);
    }

    /// Waits until the replica equals the simulator's document, clock fields aside.
    void ExpectMirrored(const std::string& name)
    {
        const std::string truth = without_clock_time(query_truth(sim->port));
        if (!name.empty()) {
            EXPECT_NE(truth.find("<name>" + name + "</name>"), std::string::npos) << truth;
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { return without_clock_time(compact_query(link->Doc())) == truth; },
                                    TIMEOUT_MS));
        EXPECT_EQ(without_clock_time(compact_query(link->Doc())), truth);
    }

    /// A bare client reads until it has seen a line of every name in `names`, each with a good sum.
    void ExpectGoodSums(const std::vector<std::string>& names)
    {
        RawClient raw;
        ASSERT_TRUE(raw.Connect(sim->port));
        std::set<std::string> seen;
        raw.WaitFor([&](const std::string& line) {
            const std::string name = fields(line)[0];
            if (std::find(names.begin(), names.end(), name) != names.end()) {
                EXPECT_TRUE(Connector::VerifyCheckSum(line)) << line;
                seen.insert(name);
            }
            return seen.size() == names.size();
        });
        EXPECT_EQ(seen.size(), names.size());
    }

    /// Waits for a time stamp of this century in `spec`: a header that comes again (whenever the
    /// selection changes) zeroes the values until the next record.
    bool StampArrives(const std::string& spec)
    {
        return QTest::qWaitFor([&] { return link->VarNumeric(spec) > 1e9; }, TIMEOUT_MS);
    }

    std::unique_ptr<SimProcess> sim;
    std::shared_ptr<Connector> link;
    Heard heard;
};

TEST_F(SimModelLink, Dravik)
{
    Start("dravik", "leafy", {"DATA", "DATASTAT", "DATATEST"},
          {"DATA", "DATASTAT", "DATATEST", "DATALT", "DATACELLA", "DATACELLB"});
    // DATA carries the instrument's clock; the other records take the time of the last DATA.
    EXPECT_TRUE(StampArrives("leafy:DATA:TIME"));
    EXPECT_FALSE(link->Header("DATALTH").empty());

    link->OnSendRawXML("<arvex><dravik><cmd><connectlightsource>true</connectlightsource><poweroff>true</poweroff>"
                       "</cmd></dravik></arvex>\n");
    ASSERT_TRUE(heard.WaitForEvent("POWEROFF"));
    EXPECT_TRUE(heard.WaitForEvent("LIGHTSOURCECONNECTED"));
    link->OnSendRawXML("<arvex><dravik><cmd><disconnectlightsource>true</disconnectlightsource><poweron>true"
                       "</poweron></cmd></dravik></arvex>\n");
    EXPECT_TRUE(heard.WaitForEvent("POWERON"));
    EXPECT_TRUE(heard.WaitForEvent("LIGHTSOURCEDISCONNECTED"));

    // A zero and a span each leave a record of every coefficient in the history.
    ConfigDravik& conf = link->Doc_Dravik().Conf();
    link->OnSendRawXML("<arvex><dravik><cmd><co2bzero>true</co2bzero></cmd></dravik></arvex>\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return conf.History().children().size() == 1; }, TIMEOUT_MS));
    auto* zero = dynamic_cast<ConfigCalRecordDravik*>(conf.History().children().front());
    ASSERT_NE(zero, nullptr);
    EXPECT_EQ(zero->Type().get(), "CO2B Zero");
    EXPECT_EQ(zero->Co2bzero().get(), conf.Cal().Co2bzero().get());
    EXPECT_NE(zero->Co2bzero().get(), 1.0f);
    EXPECT_GT(zero->Time().get(), 1000000000);
    const float co2bzero = zero->Co2bzero().get();  // the list is replaced whole at its next change

    // The clock moves on to the next second first: the history tells its records apart by time.
    const double after = link->VarNumeric("leafy:DATA:TIME") + 1.0;
    ASSERT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("leafy:DATA:TIME") >= std::floor(after); },
                                TIMEOUT_MS));
    link->OnSendRawXML("<arvex><dravik><cal><h2oaspanconc2>20</h2oaspanconc2></cal><cmd><h2oaspan2>true</h2oaspan2>"
                       "</cmd></dravik></arvex>\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return conf.History().children().size() == 2; }, TIMEOUT_MS));
    auto* span = dynamic_cast<ConfigCalRecordDravik*>(conf.History().children().back());
    ASSERT_NE(span, nullptr);
    EXPECT_EQ(span->Type().get(), "H2OA Span2: 20");
    EXPECT_EQ(span->H2oaspan2().get(), conf.Cal().H2oaspan2().get());
    EXPECT_NEAR(span->H2oaspan2().get(), 1 / 1.012, 0.01);
    EXPECT_EQ(span->Co2bzero().get(), co2bzero);
    EXPECT_FALSE(conf.Cmd().H2oaspan2().get());
    ExpectMirrored("leafy");
}

TEST_F(SimModelLink, Quenta)
{
    Start("quenta", "console", {"DATA", "DATASTAT"}, {"DATA", "DATASTAT", "DATATEST", "DATALT"});
    EXPECT_TRUE(StampArrives("console:DATA:TIME"));

    link->Doc_Quenta().Conf().Cfg().Flow().Pump_percent().set(60);
    link->OnSendXMLChanges();
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("console:DATA:PUMP") > 55; }, TIMEOUT_MS));
    link->OnSendRawXML("<arvex><quenta><cmd><connectlightsource>true</connectlightsource></cmd></quenta></arvex>\n");
    ASSERT_TRUE(heard.WaitForEvent("LIGHTSOURCECONNECTED"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("console:DATADIAG:LIGHTSOURCE") == 1; }, TIMEOUT_MS));
    ExpectMirrored("console");
}

TEST_F(SimModelLink, Halden)
{
    Start("halden", "fluor", {"DATA", "DATASTAT", "DATATEST"}, {"DATA", "DATASTAT", "DATATEST"});
    EXPECT_TRUE(StampArrives("fluor:DATATEST:TIME"));

    ConfigHalden& conf = link->Doc_Halden().Conf();
    link->OnSendRawXML("<arvex><halden><cmd><zero_pc0>true</zero_pc0></cmd></halden></arvex>\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return conf.History().children().size() == 1; }, TIMEOUT_MS));
    auto* record = dynamic_cast<ConfigCalRecordHalden*>(conf.History().children().front());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->Type().get(), "Pc0 Zero");
    EXPECT_EQ(record->Pc0().get(), conf.Cal().Pc0().get());
    EXPECT_NE(record->Pc0().get(), 0);
    EXPECT_EQ(record->DC0().get(), 0);
    EXPECT_TRUE(heard.WaitForEvent("ZEROPC0"));
    ExpectMirrored("fluor");

    // The I/O console: text lines on the same socket, answered to their sender only.
    RawClient console;
    ASSERT_TRUE(console.Connect(sim->port));
    console.Send("w 1 2\nOUT\n\nclr\nout\n");
    auto answer = [&](const std::string& prefix) {
        return console.WaitFor([&](const std::string& line) { return line.rfind("FPGA", 0) == 0; }) == prefix;
    };
    for (const char* expected : {"FPGA ok w 1 2\n", "FPGA out 1\n", "FPGA clr\n", "FPGA out 0\n"})
        EXPECT_TRUE(answer(expected)) << expected;
    link->OnSendRawXML("x\nout\n");
    const size_t before = heard.data.size();
    EXPECT_TRUE(QTest::qWaitFor([&] { return heard.data.size() > before + 2; }, TIMEOUT_MS));
}

TEST_F(SimModelLink, Bremmel)
{
    const std::vector<std::string> kinds = {"DATA", "DATASTAT", "DATAGPS", "DATASONIC", "DATACH4"};
    Start("bremmel", "logger", kinds, kinds);
    // DATA's time is in its third and fourth fields, that of the others in their first two.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const double seconds = link->VarNumeric("logger:DATA:SECONDS");
        return seconds > 1e9 && std::abs(link->Time() - seconds) < 2.0;
    }, TIMEOUT_MS));

    link->OnSendRawXML("<arvex><bremmel><cmd><logusbstart>true</logusbstart></cmd></bremmel></arvex>\n");
    ASSERT_TRUE(heard.WaitForEvent("LOGUSBSTART"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("logger:DATADIAG:USBLOGGING") == 1; }, TIMEOUT_MS));
}

TEST_F(SimModelLink, Ostrel)
{
    Start("ostrel", "ost", {"DATA"}, {"DATA"});
    EXPECT_GT(link->Time(), 1e9);
    link->Doc_Ostrel().Conf().Flow().set(0.25f);
    link->OnSendXMLChanges();
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->VarNumeric("ost:DATA:FLOWSET") == 0.25; }, TIMEOUT_MS));
    ExpectMirrored("");
}

}  // namespace
