// The Tolvan's control, clock and network windows and the rate, match and factory windows.

#include "service/clocktolvandialog.h"
#include "service/factorydialog.h"
#include "service/heaterstolvandialog.h"
#include "service/matchdialog.h"
#include "service/networktolvandialog.h"
#include "service/ratedialog.h"
#include "service/temptolvandialog.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFocusEvent>
#include <QRadioButton>
#include <QSpinBox>

#include <functional>
#include <sstream>

#include "tests/service/wire.h"

namespace {

TEST(TempTolvanDialog, EachChangeGoesOutAtOnceAndATouchedValueSelectsItsMode)
{
    using D = TempTolvanDialog;
    const struct { const char* what; std::function<void(D&)> act; const char* sent; } cases[] = {
        {"cooler set point in Automatic",
         [](D& d) { group(&d, "Cooler Temperature Control")->findChild<QDoubleSpinBox*>()->setValue(30.5); },
         "<lasercooler><control>manual</control><temp>30.5</temp></lasercooler>"},
        {"cooler DAC count", [](D& d) { group(&d, "Cooler Temperature Control")->findChild<QSpinBox*>()->setValue(40000); },
         "<lasercooler><control>daccount</control><daccount>40000</daccount></lasercooler>"},
        {"block off", [](D& d) { Click(&d, "O&ff"); }, "<laserblock><control>off</control></laserblock>"},
        {"block set point, already On",
         [](D& d) { group(&d, "Block Temperature Control")->findChild<QDoubleSpinBox*>()->setValue(20); },
         "<laserblock><temp>20</temp></laserblock>"},
        {"low range", [](D& d) { Click(&d, "Low Range (-25...25C)"); }, "<temprange>low</temprange>"},
    };
    for (const auto& c : cases) {
        Wire wire;
        D dialog(nullptr, "bench", &wire.Doc());
        wire.Join(&dialog);
        c.act(dialog);
        EXPECT_NE(wire.WaitForText("<cfg>").find(c.sent), std::string::npos) << c.what;
    }
}

TEST(HeatersTolvanDialog, ModesEnableTheirFieldsAndInstrumentChangesKeepEdits)
{
    Wire wire;
    HeatersTolvanDialog dialog(nullptr, "bench", &wire.Doc());
    wire.Join(&dialog);
    QGroupBox* top = group(&dialog, "Top Heater Control");
    auto* power = top->findChildren<QSpinBox*>()[0];
    auto* deltat = top->findChild<QDoubleSpinBox*>();
    QPushButton* apply = dialog.findChildren<QPushButton*>()[1];  // after "Refresh"
    EXPECT_FALSE(apply->isEnabled());
    EXPECT_TRUE(deltat->isEnabled());  // all on Auto
    Click(top, "On");
    EXPECT_TRUE(power->isEnabled() && !deltat->isEnabled() && apply->isEnabled());
    Click(group(&dialog, "Bottom Heater Control"), "Off");
    for (QSpinBox* field : group(&dialog, "Bottom Heater Control")->findChildren<QSpinBox*>())
        EXPECT_FALSE(field->isEnabled());
    power->setValue(55);
    wire.Tell("<arvex><tolvan><cfg><heater><top><heaterpower>70</heaterpower></top></heater></cfg></tolvan></arvex>");
    EXPECT_EQ(power->value(), 55);  // the edit in progress survives
    Click(&dialog, "Apply");
    EXPECT_EQ(wire.WaitForText("<heater>"), "<arvex><tolvan><cfg><heater><top><heaterpower>55</heaterpower><control>on</control>"
                                            "</top><bottom><control>off</control></bottom></heater></cfg></tolvan></arvex>\n");
    EXPECT_FALSE(apply->isEnabled());
    power->setValue(60);
    Click(&dialog, "Refresh");
    EXPECT_EQ(power->value(), 55);
    EXPECT_FALSE(apply->isEnabled());
}

TEST(RateDialog, OffersTheLeafsRatesAndSendsAChoiceAtOnce)
{
    Wire wire;
    RateDialog dialog(nullptr, "bench", &wire.Doc().Conf().Output().Rate(), "tolvan");
    wire.JoinRaw(&dialog);
    auto* rates = dialog.findChild<QComboBox*>();
    QStringList items;
    for (int i = 0; i < rates->count(); ++i)
        items << rates->itemText(i) + "=" + rates->itemData(i).toString();
    EXPECT_EQ(items, QStringList({"Poll=0", "1 Hz=1", "2 Hz=2", "5 Hz=5", "10 Hz=10", "20 Hz=20", "40 Hz=40"}));
    EXPECT_EQ(rates->currentText(), "40 Hz");
    rates->setCurrentIndex(rates->findText("10 Hz"));
    EXPECT_EQ(wire.WaitForText("<rate>"), "<arvex><tolvan><output><rate>10</rate></output></tolvan></arvex>\n");
    Click(&dialog, "&Poll");
    EXPECT_EQ(wire.WaitForText("<poll>"), command("tolvan", "poll"));
    Click(&dialog, "Po&ll");
    EXPECT_EQ(wire.WaitForText("<polltest>"), command("tolvan", "polltest"));
    wire.Tell("<arvex><tolvan><output><rate>0</rate></output></tolvan></arvex>");
    EXPECT_EQ(rates->currentText(), "Poll");
    // A rate that another model's table lacks changes nothing.
    const std::vector<std::string> texts{"1", "5"};
    const std::vector<int> hz{1, 5};
    ConfigRate rate(texts, hz, 1);
    RateDialog other(nullptr, "bench", &rate, "tolvan");
    QSignalSpy sent(&other, &RateDialog::SendXMLChanges);
    EXPECT_EQ(other.findChild<QComboBox*>()->currentText(), "5 Hz");
    other.findChild<QComboBox*>()->setCurrentIndex(0);  // "Poll"
    EXPECT_EQ(rate.get(), 1);
    EXPECT_EQ(sent.count(), 0);
}

TEST(MatchDialog, StraightCrossAndToggle)
{
    const struct { float before; const char* button; float after; } cases[] = {
        {50, "&Toggle", -100}, {0, "&Toggle", -100}, {-0.5f, "&Toggle", 100}, {-100, "&Straight", 100}, {100, "&Cross", -100}};
    for (const auto& c : cases) {
        ConfigurableFloat valve("match", c.before);
        MatchDialog dialog(nullptr, "bench", &valve);
        QSignalSpy sent(&dialog, &MatchDialog::SendXMLChanges);
        Click(&dialog, c.button);
        EXPECT_EQ(valve.get(), c.after) << c.before << " " << c.button;
        EXPECT_EQ(sent.count(), 1);
    }
}

TEST(FactoryDialogs, ReturnSendsWhatReadsAndCommitAndRollbackGoToTheModel)
{
    Wire wire;
    FactoryTolvanDialog dialog(nullptr, "bench", &wire.Doc().Conf().Factory());
    wire.JoinRaw(&dialog);
    const auto edits = Edits(&dialog);
    ASSERT_EQ(edits.size(), 19u);
    EXPECT_EQ(edits[0]->text(), "ch4-XXXX");
    edits[1]->setText("23.5");  // laser start temperature
    edits[10]->setText("abc");  // mirror position: no number, left out
    QTest::keyClick(edits[1], Qt::Key_Return);
    EXPECT_EQ(wire.WaitForText("<factory>"),
              "<arvex><tolvan><factory><laserstarttemp>23.5</laserstarttemp></factory></tolvan></arvex>\n");
    Click(&dialog, "Rollback");
    EXPECT_EQ(wire.WaitForText("<cmd>"), "<arvex><tolvan><factory><cmd><rollback>true</rollback></cmd></factory></tolvan></arvex>\n");
    Wire morvik("morvik");
    FactoryMorvikDialog serial(nullptr, "base", &morvik.connector->Doc_Morvik().Conf().Factory());
    morvik.JoinRaw(&serial);
    ASSERT_EQ(Edits(&serial).size(), 1u);
    Edits(&serial)[0]->setText("ch4-base-0007");
    Click(&serial, "Commit");
    EXPECT_EQ(morvik.WaitForText("<factory>"),
              "<arvex><morvik><factory><serialnumber>ch4-base-0007</serialnumber></factory></morvik></arvex>\n");
    EXPECT_EQ(morvik.WaitForText("<cmd>"), "<arvex><morvik><factory><cmd><commit>true</commit></cmd></factory></morvik></arvex>\n");
}

std::string clock(const std::string& body) { return "<arvex><tolvan><cfg><clock>" + body + "</clock></cfg></tolvan></arvex>"; }

TEST(ClockTolvanDialog, QueriesWhileShownAndFollowsTheAreasNotBeingEdited)
{
    std::istringstream zones("UTC|Europe/Oslo|Asia/Tokyo");
    std::ostringstream errors;
    ConfigTimezone().read_doctype(zones, errors);  // as the instrument's descriptor does
    Wire wire;
    ClockTolvanDialog dialog(nullptr, "bench", &wire.Doc().Conf().Cfg().Clock());
    wire.JoinRaw(&dialog);
    auto* zone = dialog.findChild<QComboBox*>();
    auto* time = dialog.findChild<DateTimeEdit*>();
    EXPECT_EQ(zone->count(), 3);
    const auto focus = [](QWidget* widget) {
        QFocusEvent event(QEvent::FocusIn, Qt::MouseFocusReason);
        QApplication::sendEvent(widget, &event);
    };
    dialog.show();
    EXPECT_EQ(wire.WaitForText("<clock>&query;"), clock("&query;") + "\n");
    wire.Tell(clock("<time>04:05:06</time><date>2031-02-03</date><zone>Europe/Oslo</zone><ptp>slaveonly</ptp>"));
    EXPECT_EQ(time->dateTime().toString("yyyy-MM-dd hh:mm:ss"), "2031-02-03 04:05:06");
    EXPECT_EQ(zone->currentText(), "Europe/Oslo");
    EXPECT_TRUE(dialog.findChildren<QRadioButton*>()[1]->isChecked());
    focus(time);  // the user starts typing a time
    wire.Tell(clock("<time>04:05:07</time><zone>Asia/Tokyo</zone>"));
    EXPECT_EQ(time->dateTime().toString("hh:mm:ss"), "04:05:06");
    EXPECT_EQ(zone->currentText(), "Asia/Tokyo");
    focus(zone);
    Click(&dialog, "Refresh");
    wire.Tell(clock("<time>04:05:09</time><zone>UTC</zone>"));
    EXPECT_EQ(time->dateTime().toString("hh:mm:ss"), "04:05:09");
    EXPECT_EQ(zone->currentText(), "UTC");
    wire.Tell(clock("<time>4.5</time>"));  // unreadable: the editor keeps what it shows
    EXPECT_EQ(time->dateTime().toString("hh:mm:ss"), "04:05:09");
    dialog.findChildren<QRadioButton*>()[2]->setChecked(true);
    Click(&dialog, "Apply");
    EXPECT_NE(wire.WaitForText("<ptp>").find("<ptp>preferred</ptp>"), std::string::npos);
    dialog.hide();
    auto* timer = dialog.findChild<QTimer*>();
    EXPECT_FALSE(timer->isActive());
    wire.Tell(clock("<time>05:00:00</time>"));  // an update while hidden asks nothing either
    EXPECT_FALSE(timer->isActive());
}

TEST(NetworkTolvanDialog, RebootGoesToTheModelTagASarnelIsReadOnlyAndApplySendsTheAddresses)
{
    for (const std::string type : {"tolvan", "morvik", "sarnel"}) {
        Wire wire(type);
        ConfigCfgNetwork& section =
            type == "tolvan" ? wire.Doc().Conf().Cfg().Network() : wire.connector->Doc_Morvik().Conf().Cfg().Network();
        NetworkTolvanDialog dialog(nullptr, "bench", &section, type);
        wire.JoinRaw(&dialog);
        Click(&dialog, "Reboot");
        EXPECT_EQ(wire.WaitForText("reboot"), command(type == "tolvan" ? "tolvan" : "morvik", "reboot"));
        const auto fields = dialog.findChildren<QLineEdit*>();  // name, address, netmask, gateway
        ASSERT_EQ(fields.size(), 4);
        Click(&dialog, "Manual");
        EXPECT_EQ(fields[1]->isEnabled(), type != "sarnel") << type;
        Click(&dialog, "Automatic");
        EXPECT_FALSE(fields[1]->isEnabled());
        if (type != "tolvan")
            continue;
        fields[0]->setText("ch4-0042");
        Click(&dialog, "Manual");
        fields[1]->setText("10.0.0.5");
        Click(&dialog, "Apply");
        EXPECT_EQ(wire.WaitForText("<network>"),
                  "<arvex><tolvan><cfg><network><name>ch4-0042</name><configuration>manual</configuration>"
                  "<ipaddress>10.0.0.5</ipaddress></network></cfg></tolvan></arvex>\n");
        fields[2]->setText("255.255.0.x");  // refused with a word; nothing goes out
        fields[0]->setText("other");
        AnswerNextMessageBox("OK");
        Click(&dialog, "Apply");
        EXPECT_EQ(section.Name().get(), "ch4-0042");
    }
}

}  // namespace
