#include "service/caladvanceddialog.h"
#include "service/caltolvandialog.h"

#include <QDateTimeEdit>

#include "tests/service/wire.h"

namespace {

std::string record(const std::string& time, const std::string& type)
{
    return "<record><time>" + time + "</time><type>" + type + "</type><ch4zero>0.5</ch4zero><ch4span>1.25</ch4span></record>";
}

std::string cal(const std::string& body) { return "<arvex><tolvan><cal>" + body + "</cal></tolvan></arvex>"; }

std::string span(const std::string& gas)
{
    return "<arvex><tolvan><cal><ch4spanconc>" + gas + "</ch4spanconc></cal><cmd><ch4span>true</ch4span></cmd></tolvan></arvex>\n";
}

TEST(CalTolvanDialog, CommandsAsTypedTheHistoryDrawnAndClearedWhenConfirmed)
{
    Wire wire;
    CalTolvanDialog dialog(nullptr, "bench", &wire.Doc(), false);
    wire.JoinRaw(&dialog);
    auto* tree = dialog.findChild<QTreeWidget*>();
    auto* span_gas = dialog.findChild<QLineEdit*>();
    const struct { const char* button; const char* span_gas; std::string line; } cases[] = {
        {"Zero", "", command("tolvan", "ch4zero")}, {"Span", "2.5", span("2.5")}, {"Span", "", span("")},
        {"Span", " 1,50 µ", span(" 1,50 µ")},  // the span gas goes first, as typed
        {"Commit", "", command("tolvan", "calcommit")}, {"Rollback", "", command("tolvan", "calrollback")},
    };
    for (const auto& c : cases) {
        span_gas->setText(QString::fromUtf8(c.span_gas));
        Click(&dialog, c.button);
        EXPECT_EQ(wire.WaitForText("<cmd>"), c.line);
    }

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

    wire.Tell(cal("<ch4lastspan>2026-01-03 08:00:00</ch4lastspan>"));
    AnswerNextMessageBox("");
    Click(&dialog, "Clear Old History...");
    EXPECT_EQ(tree->topLevelItemCount(), 3);
    EXPECT_EQ(wire.Doc().Conf().Cal().History().children().size(), 3u);
    AnswerNextMessageBox("Clear");
    Click(&dialog, "Clear Old History...");
    EXPECT_EQ(wire.WaitForText("<history>"), "<arvex><tolvan><cal><history>" + record("2026-01-03 08:00:00", "CH4 Span") +
                                                 record("2026-01-02 10:00:00", "CH4 Zero") + "</history></cal></tolvan></arvex>\n");
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    EXPECT_EQ(row(tree, 0)[1], "CH4 Zero");
}

TEST(CalTolvanDialog, HistoryRowsSkipChildrenThatAreNoRecords)
{
    ConfigCal cal;
    cal.History().add(*new ConfigurableString("note", "x"));
    EXPECT_TRUE(CalTolvanHistoryRows(cal.History()).empty());
    cal.History().add(*new ConfigCalRecord(Timestamp(2026, 3, 4, 5, 6, 7), "CH4 Zero", 0.25f, 2));
    EXPECT_EQ(CalTolvanHistoryRows(cal.History()), std::vector<QStringList>({{"2026-03-04 05:06:07", "CH4 Zero", "0.25", "2"}}));
}

TEST(CalAdvancedDialog, ApplySendsTheDifferenceAndForcesARead)
{
    Wire wire;
    CalAdvancedDialog dialog(nullptr, "bench", &wire.Doc());
    wire.Join(&dialog);
    QObject::connect(&dialog, &CalAdvancedDialog::CalUpdated, wire.connector.get(), &Connector::OnForceXMLUpdate);
    wire.Tell(cal("<ch4zero>0.5</ch4zero><ch4lastspan>2025-06-07 08:09:10</ch4lastspan>"));
    const auto edits = Edits(&dialog);  // zero, span, span gas
    ASSERT_EQ(edits.size(), 3u);
    EXPECT_EQ(edits[0]->text(), "0.5");

    edits[1]->setText("1.5");
    edits[2]->setText("no number");  // left as it was, without a word
    QSignalSpy forced(wire.connector.get(), &Connector::GotXMLChanges);
    Click(&dialog, "Apply");
    EXPECT_EQ(wire.WaitForText("<cal>"), "<arvex><tolvan><cal><ch4span>1.5</ch4span></cal></tolvan></arvex>\n");
    EXPECT_EQ(forced.count(), 2);  // the send, then the forced read
    EXPECT_EQ(edits[2]->text(), "2");
    Click(&dialog, "Apply");  // nothing differs: nothing goes out, the read is still forced
    EXPECT_EQ(forced.count(), 3);

    const QDateTime before = QDateTime::currentDateTimeUtc();
    Click(&dialog, "Now");
    EXPECT_LE(std::abs(QDateTime(before.date(), before.time()).secsTo(dialog.findChild<QDateTimeEdit*>()->dateTime())), 5);
}

}  // namespace
