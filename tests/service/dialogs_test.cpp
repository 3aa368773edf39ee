// The Tolvan's mirror, clock and network windows, the rate and match windows, and the generic
// configuration dialog with the models' dialogs built on it.

#include <climits>
#include <functional>
#include <sstream>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "libskarn/configcommon.h"
#include "service/clocktolvandialog.h"
#include "service/heaterstolvandialog.h"
#include "service/matchdialog.h"
#include "service/modeldialogs.h"
#include "service/networktolvandialog.h"
#include "service/ratedialog.h"
#include "tests/service/wire.h"

Q_DECLARE_METATYPE(std::string)

namespace {

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
    // A choice reaching the instrument is run against the simulator by the watch tools test.
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

TEST(NetworkTolvanDialog, ASarnelIsReadOnlyAndApplySendsTheAddresses)
{
    for (const std::string type : {"tolvan", "morvik", "sarnel"}) {
        Wire wire(type);
        ConfigCfgNetwork& section =
            type == "tolvan" ? wire.Doc().Conf().Cfg().Network() : wire.connector->Doc_Morvik().Conf().Cfg().Network();
        NetworkTolvanDialog dialog(nullptr, "bench", &section, type);
        wire.JoinRaw(&dialog);
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

// Root "R" with no leaves of its own: zeta{z}, alpha{n, flag, inner{s}}.
struct SmallTree : ConfigurableComposite {
    ConfigurableComposite zeta{"zeta"}, alpha{"alpha"}, inner{"inner"};
    ConfigurableFloat z{"z", 1.5f};
    ConfigurableInteger n{"n", 7, 0, 1000000000000};
    ConfigurableBool flag{"flag", true};
    ConfigurableString s{"s", "text"};
    SmallTree() : ConfigurableComposite("R")
    {
        AttachUnitsAttribute(z, "Hz");
        using Edge = std::pair<ConfigurableComposite*, Configurable*>;
        for (auto [parent, child] : {Edge{&zeta, &z}, {&alpha, &n}, {&alpha, &flag}, {&inner, &s}, {&alpha, &inner},
                                     {this, &zeta}, {this, &alpha}})
            parent->add(*child);
    }
};

QStringList page_names(const GenericConfigDialog& dialog)
{
    QStringList names;
    for (int i = 0; i < dialog.Pages()->count(); ++i)
        names << dialog.Pages()->item(i)->text();
    return names;
}

TEST(GenericConfig, PagesInPathOrderWithLabelsAndExclusionsAndTheModelsOwnLabels)
{
    const struct { GenericConfigDialog::Labels labels; QStringList pages, absent_rows; } cases[] = {
        {{}, {"General", "alpha", "alpha/inner", "zeta"}, {}},
        {{{"zeta", "A Zeta"}, {"alpha", "Z Alpha"}}, {"General", "Z Alpha", "alpha/inner", "A Zeta"}, {}},
        {{{"alpha", ":EXCLUDE:"}}, {"General", "alpha/inner", "zeta"}, {"n", "flag"}},
        {{{"flag", ":EXCLUDE:"}, {"n", ":EXCLUDE:"}}, {"General", "alpha", "alpha/inner", "zeta"}, {"flag"}},
    };
    for (const auto& c : cases) {
        SmallTree tree;
        GenericConfigDialog dialog(nullptr, "Small", &tree, c.labels);
        EXPECT_EQ(page_names(dialog), c.pages);
        EXPECT_EQ(group(&dialog, "General")->layout()->count(), 0);  // the root has no leaves
        for (const QString& row : c.absent_rows)
            EXPECT_FALSE(label_texts(&dialog).contains(row)) << row.toStdString();
    }
    // The models' dialogs take their own labels; the Dravik output leaves out its records.
    DocQuenta quenta;
    DocHalden halden;
    DocDravik dravik;
    EXPECT_TRUE(page_names(FactoryQuentaDialog(nullptr, "q1", quenta)).contains("Pump - High"));
    FactoryHaldenDialog halden_factory(nullptr, "h1", halden);
    EXPECT_TRUE(find_button(halden_factory, "Red Mod On"));
    OutputDravikDialog output(nullptr, "d1", dravik);
    EXPECT_EQ(output.windowTitle(), "Output: d1");
    EXPECT_EQ(output.findChildren<QCheckBox*>().size(), 0);
    EXPECT_TRUE(label_texts(&output).contains("Avg Time"));
}

TEST(GenericConfig, EditorsCarryLimitsUnitsAndValuesAndButtonsTheirMessages)
{
    qRegisterMetaType<std::string>();
    SmallTree tree;
    GenericConfigDialog dialog(nullptr, "Small", &tree,
                               {{"Hz", "hertz"}, {"a", "ignored:BTN:Red Mod On:<arvex><x>1</x></arvex>\n"}, {"b", ":BTN:Plain"}});
    ASSERT_EQ(dialog.findChildren<QLineEdit*>().size(), 3);
    auto* n = group(&dialog, "alpha")->findChild<QLineEdit*>();
    auto* s = group(&dialog, "alpha/inner")->findChild<QLineEdit*>();
    auto* z = group(&dialog, "zeta")->findChild<QLineEdit*>();
    auto* integer = qobject_cast<const QIntValidator*>(n->validator());
    ASSERT_TRUE(qobject_cast<const QDoubleValidator*>(z->validator()) && integer);
    EXPECT_EQ(integer->bottom(), 0);
    EXPECT_EQ(integer->top(), INT_MAX);
    EXPECT_EQ(s->validator(), nullptr);
    EXPECT_EQ(z->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);
    EXPECT_EQ(s->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
    EXPECT_EQ(z->text(), "1.5");
    EXPECT_TRUE(label_texts(&dialog).contains("hertz"));
    EXPECT_TRUE(dialog.findChildren<QCheckBox*>().at(0)->isChecked());
    // A text that does not convert leaves its leaf alone; the others go in.
    n->setText("x");
    z->setText("2.25");
    s->setText("other");
    dialog.findChildren<QCheckBox*>().at(0)->setChecked(false);
    dialog._ApplyToXML();
    EXPECT_EQ(tree.n.get(), 7);
    EXPECT_EQ(tree.z.get(), 2.25f);
    EXPECT_EQ(tree.s.get(), "other");
    EXPECT_FALSE(tree.flag.get());
    QSignalSpy clicked(&dialog, &GenericConfigDialog::ButtonClicked);
    QSignalSpy raw(&dialog, &GenericConfigDialog::SendRawXML);
    Click(&dialog, "Red Mod On");
    Click(&dialog, "Plain");
    ASSERT_EQ(clicked.count(), 2);
    EXPECT_EQ(clicked[0][0].value<std::string>(), "Red Mod On");
    EXPECT_EQ(clicked[1][0].value<std::string>(), "Plain");
    ASSERT_EQ(raw.count(), 1);
    EXPECT_EQ(raw[0][0].value<std::string>(), "<arvex><x>1</x></arvex>\n");
}

}  // namespace
