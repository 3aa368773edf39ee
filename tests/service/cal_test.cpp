// The calibration panels of the Tolvan, Dravik and Halden, with their advanced dialogs.

#include <ctime>

#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "service/caladvanceddialog.h"
#include "service/caldravikadvanceddialog.h"
#include "service/caldravikdialog.h"
#include "service/calhaldenadvanceddialog.h"
#include "service/calhaldendialog.h"
#include "service/caltolvandialog.h"
#include "service/commands.h"
#include "tests/service/wire.h"

namespace {

std::string record(const std::string& time, const std::string& type)
{
    return "<record><time>" + time + "</time><type>" + type + "</type><ch4zero>0.5</ch4zero><ch4span>1.25</ch4span></record>";
}

std::string cal(const std::string& body) { return "<arvex><tolvan><cal>" + body + "</cal></tolvan></arvex>"; }

TEST(CalTolvanDialog, TheHistoryDrawnAndKeptWhenClearingIsDismissed)
{
    Wire wire;
    CalTolvanDialog dialog(nullptr, "bench", &wire.Doc(), false);
    wire.JoinRaw(&dialog);
    auto* tree = dialog.findChild<QTreeWidget*>();
    auto* span_gas = dialog.findChild<QLineEdit*>();
    span_gas->setText("7.25");  // being typed when the instrument's value comes
    wire.Tell(cal("<ch4zero>0.012</ch4zero><ch4lastzero>2026-01-02 10:00:00</ch4lastzero><ch4spanconc>3</ch4spanconc>"
                  "<history>" + record("2026-01-03 08:00:00", "CH4 Span") + record("2026-01-01 09:30:00", "CH4 Zero") +
                  record("2026-01-02 10:00:00", "CH4 Zero") + "</history>"));
    EXPECT_EQ(span_gas->text(), "3.0");
    EXPECT_EQ(label_texts(&dialog).mid(0, 2),
              QStringList({"Last Zero: 0.012; 2026-01-02 10:00:00", "Last Span: 1; 1989-01-01 00:00:00"}));
    ASSERT_EQ(tree->topLevelItemCount(), 3);
    EXPECT_EQ(row(tree, 0), QStringList({"2026-01-01 09:30:00", "CH4 Zero", "0.5", "1.25"}));
    EXPECT_EQ(row(tree, 1)[0], "2026-01-02 10:00:00");
    EXPECT_EQ(row(tree, 2)[0], "2026-01-03 08:00:00");
    EXPECT_EQ(tree->topLevelItem(0)->textAlignment(1) & Qt::AlignRight, 0);
    EXPECT_NE(tree->topLevelItem(0)->textAlignment(2) & Qt::AlignRight, 0);
    // Dismissed, the old records stay; confirmed clearing is run against the simulator by the app's panel test.
    AnswerNextMessageBox("");
    Click(&dialog, "Clear Old History...");
    EXPECT_EQ(tree->topLevelItemCount(), 3);
    EXPECT_EQ(wire.Doc().Conf().Cal().History().children().size(), 3u);
}

// The machine's zone is `zone`, whatever it was; the machine's own again after.
struct LocalZone {
    const bool was_set = qEnvironmentVariableIsSet("TZ");
    const QByteArray saved = qgetenv("TZ");
    explicit LocalZone(const char* zone) { qputenv("TZ", zone), tzset(); }
    ~LocalZone() { was_set ? qputenv("TZ", saved) : qunsetenv("TZ"), tzset(); }
};

TEST(CalAdvancedDialog, ApplySendsOnlyEditsStampsAsTheInstrumentWritesThemAndForcesARead)
{
    const LocalZone oslo("Europe/Oslo");
    ASSERT_FALSE(QDateTime(QDate(2026, 3, 29), QTime(2, 30)).isValid()) << "an hour that Oslo skips";
    Wire wire;
    CalAdvancedDialog dialog(nullptr, "bench", &wire.Doc());
    wire.Join(&dialog);
    QObject::connect(&dialog, &CalAdvancedDialog::CalUpdated, wire.connector.get(), &Connector::OnForceXMLUpdate);
    wire.Tell(cal("<ch4zero>0.5</ch4zero><ch4lastzero>2026-03-29 02:30:00</ch4lastzero>"));
    auto* zero_time = dialog.findChild<QDateTimeEdit*>();
    EXPECT_EQ(zero_time->text(), "2026-03-29 02:30:00");
    const auto edits = Edits(&dialog);  // zero, span, span gas
    ASSERT_EQ(edits.size(), 3u);
    EXPECT_EQ(edits[0]->text(), "0.5");
    wire.Sent();
    QSignalSpy forced(wire.connector.get(), &Connector::GotXMLChanges);
    Click(&dialog, "Apply");  // nothing differs: nothing goes out, the read is still forced
    EXPECT_EQ(wire.Sent(), "");
    EXPECT_EQ(forced.count(), 1);
    edits[1]->setText("1.5");
    edits[2]->setText("no number");  // left as it was, without a word
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    zero_time->setFocus();
    zero_time->setSelectedSection(QDateTimeEdit::MinuteSection);
    QTest::keyClicks(zero_time, "45");
    Click(&dialog, "Apply");
    EXPECT_EQ(wire.Sent(), cal("<ch4span>1.5</ch4span><ch4lastzero>2026-03-29 02:45:00</ch4lastzero>") + "\n");
    EXPECT_EQ(forced.count(), 3);  // the forced read, the send
    EXPECT_EQ(edits[2]->text(), "2");
    const QDateTime before = QDateTime::currentDateTimeUtc();
    Click(&dialog, "Now");
    EXPECT_LE(std::abs(before.secsTo(zero_time->dateTime())), 5);
}

TEST(CalDravikDialog, EveryCommandOnTheWireTheDocumentDrawnInLocalTimeAndAnAdvancedApply)
{
    const LocalZone east("XYZ-3");  // three hours east of UTC, no daylight saving
    const struct { const char* group; const char* button; const char* element; } commands[] = {
        {"CO2A", "Zero", "co2azero"}, {"CO2B", "Zero", "co2bzero"}, {"H2OA", "Zero", "h2oazero"},
        {"H2OB", "Zero", "h2obzero"}, {"TCell A", "Zero", "tazero"}, {"TCell B", "Zero", "tbzero"},
        {"SS A", "Reset", "ssa_reset"}, {"SS B", "Reset", "ssb_reset"}, {"Flow Meter", "Zero", "flowmeterzero"},
        {"Flow A", "Zero", "flowazero"}, {"Flow B", "Zero", "flowbzero"},
        {"Chamber Pressure", "Zero", "chamberpressurezero"},
    };
    const struct { const char* group; int n; const char* gas; } spans[] = {
        {"CO2A", 1, "350.5"}, {"CO2A", 2, ""}, {"CO2B", 1, "301"}, {"CO2B", 2, "1,2e3 x"},  // as typed, unchecked
        {"H2OA", 1, "20"}, {"H2OA", 2, "90"}, {"H2OB", 1, "25"}, {"H2OB", 2, "95"}};
    Wire wire("dravik");
    CalDravikDialog dialog(nullptr, "head", &wire.connector->Doc_Dravik(), false);
    wire.JoinRaw(&dialog);
    auto* tree = dialog.findChild<QTreeWidget*>();
    ASSERT_EQ(tree->columnCount(), 23);
    QLineEdit* span2 = group(&dialog, "H2OB")->findChildren<QLineEdit*>()[1];
    QLineEdit* oxygen = group(&dialog, "Oxygen %")->findChild<QLineEdit*>();
    EXPECT_EQ(span2->text(), "0.0");  // the defaults give way to the document at once
    EXPECT_EQ(oxygen->text(), "21.0");
    for (const auto& c : commands) {
        Click(group(&dialog, c.group), c.button);
        EXPECT_EQ(wire.WaitForText("<dravik><c"), CommandLine("dravik", c.element)) << c.group;
    }
    for (const auto& s : spans) {
        group(&dialog, s.group)->findChildren<QLineEdit*>()[s.n - 1]->setText(s.gas);
        Click(group(&dialog, s.group), "Span" + QString::number(s.n));
        EXPECT_EQ(wire.WaitForText("<dravik><c"), DravikSpanLine(QString(s.group).toLower().toStdString(), s.n, s.gas));
    }
    oxygen->setText("20.5");
    Click(group(&dialog, "Oxygen %"), "Apply");
    EXPECT_EQ(wire.WaitForText("<dravik><c"), CalLine("dravik", "oxygen", "20.5"));
    for (const char* change : {"<co2azero>0.98</co2azero><h2obspanconc2>95</h2obspanconc2><oxygen>20.9</oxygen>",
                               "<co2azero>0.97</co2azero>"}) {
        span2->setText("being typed");
        oxygen->setText("being typed");
        wire.Tell("<arvex><dravik><cal>" + std::string(change) + "</cal></dravik></arvex>");
        EXPECT_EQ(span2->text(), "95.0");
        EXPECT_EQ(oxygen->text(), "20.9");
    }
    EXPECT_TRUE(label_texts(group(&dialog, "CO2A")).contains("Zero: 0.97"));
    EXPECT_TRUE(label_texts(group(&dialog, "SS B")).contains("Ref: 50000"));
    wire.Tell("<arvex><dravik><history><record><time>1700003600</time><type>H2OA Span2: 20</type>"
              "<h2oaspan2>0.98765432</h2oaspan2></record><record><time>1700000000</time><type>CO2A Zero</type>"
              "<co2azero>0.95</co2azero><oxygen>20.5</oxygen></record></history></dravik></arvex>");
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    const QStringList oldest = row(tree, 0);  // in local time, not UTC's 22:13:20
    EXPECT_EQ(oldest.mid(0, 3), QStringList({"2023-11-15 01:13:20", "CO2A Zero", "0.95"}));
    EXPECT_EQ(oldest[16] + " " + oldest[22], "50000 20.5");  // SS A Ref, Oxygen
    EXPECT_EQ(row(tree, 1)[10], "0.987654");
    EXPECT_FALSE(find_button(dialog, "Undo")->isEnabled() || find_button(dialog, "Redo")->isEnabled());
    // The advanced window applies what reads as a float, and forces a read.
    CalDravikAdvancedDialog advanced(nullptr, "head", &wire.connector->Doc_Dravik());
    wire.Join(&advanced);
    QObject::connect(&advanced, &CalDravikAdvancedDialog::CalUpdated, wire.connector.get(), &Connector::OnForceXMLUpdate);
    EXPECT_TRUE(label_texts(group(&advanced, "H2OA")).contains("mmol/mol"));
    EXPECT_TRUE(label_texts(group(&advanced, "CO2B")).contains("µmol/mol"));
    group(&advanced, "CO2A")->findChildren<QLineEdit*>()[0]->setText("0.5");
    group(&advanced, "SS B")->findChild<QLineEdit*>()->setText("no number");
    group(&advanced, "Chamber Pressure")->findChild<QLineEdit*>()->setText("2.75");
    QSignalSpy forced(wire.connector.get(), &Connector::GotXMLChanges);
    Click(&advanced, "Apply");
    EXPECT_EQ(wire.WaitForText("<cal>"), "<arvex><dravik><cal><co2azero>0.5</co2azero>"
                                         "<chamberpressurezero>2.75</chamberpressurezero></cal></dravik></arvex>\n");
    EXPECT_EQ(forced.count(), 2);  // the send, then the forced read
    EXPECT_EQ(group(&advanced, "SS B")->findChild<QLineEdit*>()->text(), "50000");
}

TEST(CalHaldenDialog, WholeCountsZerosAndAnAdvancedApplyThroughAFloat)
{
    Wire wire("halden");
    DocHalden& doc = wire.connector->Doc_Halden();
    CalHaldenDialog dialog(nullptr, "fluor", &doc, false);
    CalHaldenAdvancedDialog advanced(nullptr, "fluor", &doc);
    wire.JoinRaw(&dialog);
    wire.Join(&advanced);
    EXPECT_TRUE(label_texts(&dialog).contains("Zero: 0"));
    for (const auto& [box, element] : {std::pair{"DC0", "zero_dc0"}, std::pair{"Pc0", "zero_pc0"}}) {
        Click(group(&dialog, box), "Zero");
        EXPECT_EQ(wire.WaitForText("<cmd>"), CommandLine("halden", element));
    }
    wire.Tell("<arvex><halden><cal><DC0>412</DC0><Pc0>-37</Pc0></cal><history><record><time>2026-02-03 04:05:06</time>"
              "<type>DC0 Zero</type><DC0>412</DC0><Pc0>123456789</Pc0></record></history></halden></arvex>");
    EXPECT_TRUE(label_texts(group(&dialog, "DC0")).contains("Zero: 412"));
    EXPECT_TRUE(label_texts(group(&dialog, "Pc0")).contains("Zero: -37"));
    auto* tree = dialog.findChild<QTreeWidget*>();
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    EXPECT_EQ(row(tree, 0), QStringList({"2026-02-03 04:05:06", "DC0 Zero", "412", "123456789"}));
    EXPECT_FALSE(find_button(dialog, "Undo")->isEnabled() || find_button(dialog, "Redo")->isEnabled());
    const struct { const char* dc0; const char* pc0; int64_t want_dc0, want_pc0; } cases[] = {
        {"16777217", "12.9", 16777216, 12},  // beyond 2^24 a float rounds; a fraction is cut off
        {"many", "-7.5", 16777216, -7},      // the other field still applies
        {"123456789", "", 123456792, -7},
    };
    for (const auto& c : cases) {
        advanced.findChildren<QLineEdit*>()[0]->setText(c.dc0);
        advanced.findChildren<QLineEdit*>()[1]->setText(c.pc0);
        Click(&advanced, "Apply");
        EXPECT_EQ(doc.Conf().Cal().DC0().get(), c.want_dc0) << c.dc0;
        EXPECT_EQ(doc.Conf().Cal().Pc0().get(), c.want_pc0) << c.pc0;
    }
    Click(&advanced, "Refresh");
    EXPECT_EQ(advanced.findChildren<QLineEdit*>()[0]->text(), "123456792");
}

}  // namespace
