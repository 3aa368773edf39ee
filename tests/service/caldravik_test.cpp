#include "service/caldravikadvanceddialog.h"
#include "service/caldravikdialog.h"
#include "service/calhaldenadvanceddialog.h"
#include "service/calhaldendialog.h"

#include <QPushButton>

#include <cstdlib>
#include <ctime>

#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "tests/service/wire.h"

namespace {

void expect_undo_redo_disabled(QWidget* dialog)
{
    for (const char* label : {"Undo", "Redo"})
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
            EXPECT_TRUE(button->text() != label || !button->isEnabled()) << label;
}

std::string dravik_cmd(const std::string& element)
{
    return "<arvex><dravik><cmd><" + element + ">true</" + element + "></cmd></dravik></arvex>\n";
}

std::string dravik_span(const std::string& ch, int n, const std::string& gas)
{
    const std::string conc = ch + "spanconc" + std::to_string(n), span = ch + "span" + std::to_string(n);
    return "<arvex><dravik><cal><" + conc + ">" + gas + "</" + conc + "></cal><cmd><" + span + ">true</" + span +
           "></cmd></dravik></arvex>\n";
}

TEST(CalDravikDialog, EveryCommandAndSpanOnTheWire)
{
    const struct {
        const char* group;
        const char* button;
        int field;  // the group's line edit to type into first, -1 for none
        const char* text;
        std::string line;
    } cases[] = {
        {"CO2A", "Zero", -1, "", dravik_cmd("co2azero")},
        {"CO2B", "Zero", -1, "", dravik_cmd("co2bzero")},
        {"H2OA", "Zero", -1, "", dravik_cmd("h2oazero")},
        {"H2OB", "Zero", -1, "", dravik_cmd("h2obzero")},
        {"TCell A", "Zero", -1, "", dravik_cmd("tazero")},
        {"TCell B", "Zero", -1, "", dravik_cmd("tbzero")},
        {"SS A", "Reset", -1, "", dravik_cmd("ssa_reset")},
        {"SS B", "Reset", -1, "", dravik_cmd("ssb_reset")},
        {"Flow Meter", "Zero", -1, "", dravik_cmd("flowmeterzero")},
        {"Flow A", "Zero", -1, "", dravik_cmd("flowazero")},
        {"Flow B", "Zero", -1, "", dravik_cmd("flowbzero")},
        {"Chamber Pressure", "Zero", -1, "", dravik_cmd("chamberpressurezero")},
        {"CO2A", "Span1", 0, "350.5", dravik_span("co2a", 1, "350.5")},
        {"CO2A", "Span2", 1, "", dravik_span("co2a", 2, "")},
        {"CO2B", "Span1", 0, "301", dravik_span("co2b", 1, "301")},
        {"CO2B", "Span2", 1, "1,2e3 x", dravik_span("co2b", 2, "1,2e3 x")},  // as typed, unchecked
        {"H2OA", "Span1", 0, "20", dravik_span("h2oa", 1, "20")},
        {"H2OA", "Span2", 1, "90", dravik_span("h2oa", 2, "90")},
        {"H2OB", "Span1", 0, "25", dravik_span("h2ob", 1, "25")},
        {"H2OB", "Span2", 1, "95", dravik_span("h2ob", 2, "95")},
        {"Oxygen %", "Apply", 0, "20.5", "<arvex><dravik><cal><oxygen>20.5</oxygen></cal></dravik></arvex>\n"},
    };
    Wire wire("dravik");
    CalDravikDialog dialog(nullptr, "head", &wire.connector->Doc_Dravik(), false);
    wire.JoinRaw(&dialog);
    EXPECT_EQ(dialog.windowTitle(), "Calibration Control Panel: head");
    for (const auto& c : cases) {
        QGroupBox* box = group(&dialog, c.group);
        if (c.field >= 0)
            box->findChildren<QLineEdit*>()[c.field]->setText(QString::fromUtf8(c.text));
        Click(box, c.button);
        EXPECT_EQ(wire.WaitForText("<dravik><c"), c.line) << c.group << " " << c.button;
    }
}

TEST(CalDravikDialog, DrawsFromEveryDocumentChangeInLocalTime)
{
    // Three hours east of UTC, with no daylight saving, whatever the machine's zone.
    const char* zone = std::getenv("TZ");
    const std::string saved = zone ? zone : "";
    setenv("TZ", "XYZ-3", 1);
    tzset();

    Wire wire("dravik");
    CalDravikDialog dialog(nullptr, "head", &wire.connector->Doc_Dravik(), false);
    wire.JoinRaw(&dialog);
    auto* tree = dialog.findChild<QTreeWidget*>();
    ASSERT_EQ(tree->columnCount(), 23);
    QLineEdit* span2 = group(&dialog, "H2OB")->findChildren<QLineEdit*>()[1];
    QLineEdit* oxygen = group(&dialog, "Oxygen %")->findChild<QLineEdit*>();
    EXPECT_EQ(span2->text(), "0.0");  // the defaults give way to the document at once
    EXPECT_EQ(oxygen->text(), "21.0");

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

    expect_undo_redo_disabled(&dialog);

    if (zone)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

TEST(CalDravikAdvancedDialog, AppliesWhatReadsAsAFloatAndForcesARead)
{
    Wire wire("dravik");
    CalDravikAdvancedDialog dialog(nullptr, "head", &wire.connector->Doc_Dravik());
    wire.Join(&dialog);
    QObject::connect(&dialog, &CalDravikAdvancedDialog::CalUpdated, wire.connector.get(), &Connector::OnForceXMLUpdate);
    EXPECT_EQ(dialog.windowTitle(), "Advanced Calibration: head");
    EXPECT_TRUE(label_texts(group(&dialog, "H2OA")).contains("mmol/mol"));
    EXPECT_TRUE(label_texts(group(&dialog, "CO2B")).contains("µmol/mol"));
    group(&dialog, "CO2A")->findChildren<QLineEdit*>()[0]->setText("0.5");
    group(&dialog, "SS B")->findChild<QLineEdit*>()->setText("no number");
    group(&dialog, "Chamber Pressure")->findChild<QLineEdit*>()->setText("2.75");
    QSignalSpy forced(wire.connector.get(), &Connector::GotXMLChanges);
    Click(&dialog, "Apply");
    EXPECT_EQ(wire.WaitForText("<cal>"), "<arvex><dravik><cal><co2azero>0.5</co2azero>"
                                         "<chamberpressurezero>2.75</chamberpressurezero></cal></dravik></arvex>\n");
    EXPECT_EQ(forced.count(), 2);  // the send, then the forced read
    EXPECT_EQ(group(&dialog, "SS B")->findChild<QLineEdit*>()->text(), "50000");
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
    for (const auto& [button, element] : {std::pair{"DC0", "zero_dc0"}, std::pair{"Pc0", "zero_pc0"}}) {
        Click(group(&dialog, button), "Zero");
        EXPECT_EQ(wire.WaitForText("<cmd>"), std::string("<arvex><halden><cmd><") + element + ">true</" + element +
                                                 "></cmd></halden></arvex>\n");
    }

    wire.Tell("<arvex><halden><cal><DC0>412</DC0><Pc0>-37</Pc0></cal><history><record><time>2026-02-03 04:05:06</time>"
              "<type>DC0 Zero</type><DC0>412</DC0><Pc0>123456789</Pc0></record></history></halden></arvex>");
    EXPECT_TRUE(label_texts(group(&dialog, "DC0")).contains("Zero: 412"));
    EXPECT_TRUE(label_texts(group(&dialog, "Pc0")).contains("Zero: -37"));
    auto* tree = dialog.findChild<QTreeWidget*>();
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    EXPECT_EQ(row(tree, 0), QStringList({"2026-02-03 04:05:06", "DC0 Zero", "412", "123456789"}));
    expect_undo_redo_disabled(&dialog);

    const struct {
        const char* dc0;
        const char* pc0;
        int64_t want_dc0, want_pc0;
    } cases[] = {
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
