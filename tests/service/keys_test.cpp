// What the keyboard sends through every service dialog: Return in any field presses no button, and
// typed values go out when they are complete, never prefix by prefix.

#include <algorithm>
#include <functional>
#include <memory>

#include "libskarn/docbremmel.h"
#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docmorvik.h"
#include "libskarn/docquenta.h"
#include "service/caladvanceddialog.h"
#include "service/caldravikadvanceddialog.h"
#include "service/caldravikdialog.h"
#include "service/calhaldenadvanceddialog.h"
#include "service/calhaldendialog.h"
#include "service/caltolvandialog.h"
#include "service/clocktolvandialog.h"
#include "service/commands.h"
#include "service/factorydialog.h"
#include "service/heaterstolvandialog.h"
#include "service/modeldialogs.h"
#include "service/networktolvandialog.h"
#include "service/ratedialog.h"
#include "service/temptolvandialog.h"
#include "tests/service/wire.h"

namespace {

// Joined as their watch windows join them.
template <class D>
QWidget* raw(Wire& wire, D* dialog)
{
    wire.JoinRaw(dialog);
    return dialog;
}

using Open = std::function<QWidget*(Wire&)>;
template <class D, class Doc>
Open panel(Doc& (Connector::*doc)())
{
    return [=](Wire& w) { return raw(w, new D(nullptr, "i", &(*w.connector.*doc)(), false)); };
}
template <class D, class Doc>
Open advanced(Doc& (Connector::*doc)())
{
    return [=](Wire& w) {
        auto* dialog = new D(nullptr, "i", &(*w.connector.*doc)());
        w.Join(dialog);
        QObject::connect(dialog, &D::CalUpdated, w.connector.get(), &Connector::OnForceXMLUpdate);
        return dialog;
    };
}
template <class D, class Doc>
Open generic(Doc& (Connector::*doc)())
{
    return [=](Wire& w) { return raw(w, new D(nullptr, "i", (*w.connector.*doc)())); };
}

struct Opened {
    const char* what;
    const char* model;
    Open open;
};

const Opened WINDOWS[] = {
    {"Tolvan calibration", "tolvan", panel<CalTolvanDialog>(&Connector::Doc_Tolvan)},
    {"Tolvan calibration alone", "tolvan",
     [](Wire& w) {  // as the "cal" main window holds it
         auto* window = new QMainWindow;
         window->setCentralWidget(raw(w, new CalTolvanDialog(window, "t", &w.Doc(), true)));
         return window;
     }},
    {"Tolvan advanced", "tolvan", advanced<CalAdvancedDialog>(&Connector::Doc_Tolvan)},
    {"Dravik calibration", "dravik", panel<CalDravikDialog>(&Connector::Doc_Dravik)},
    {"Dravik advanced", "dravik", advanced<CalDravikAdvancedDialog>(&Connector::Doc_Dravik)},
    {"Halden calibration", "halden", panel<CalHaldenDialog>(&Connector::Doc_Halden)},
    {"Halden advanced", "halden", advanced<CalHaldenAdvancedDialog>(&Connector::Doc_Halden)},
    {"Laser temperature", "tolvan",
     [](Wire& w) {
         auto* dialog = new TempTolvanDialog(nullptr, "t", &w.Doc());
         w.Join(dialog);
         return dialog;
     }},
    {"Mirrors", "tolvan", [](Wire& w) { return raw(w, new HeatersTolvanDialog(nullptr, "t", &w.Doc())); }},
    {"Clock", "tolvan",
     [](Wire& w) { return raw(w, new ClockTolvanDialog(nullptr, "t", &w.Doc().Conf().Cfg().Clock())); }},
    {"Network", "tolvan",
     [](Wire& w) { return raw(w, new NetworkTolvanDialog(nullptr, "t", &w.Doc().Conf().Cfg().Network(), "tolvan")); }},
    {"Rate", "tolvan",
     [](Wire& w) { return raw(w, new RateDialog(nullptr, "t", &w.Doc().Conf().Output().Rate(), "tolvan")); }},
    {"Tolvan factory", "tolvan",
     [](Wire& w) { return raw(w, new FactoryTolvanDialog(nullptr, "t", &w.Doc().Conf().Factory())); }},
    {"Morvik factory", "morvik",
     [](Wire& w) {
         return raw(w, new FactoryMorvikDialog(nullptr, "m", &w.connector->Doc_Morvik().Conf().Factory()));
     }},
    {"Quenta configuration", "quenta", generic<ConfigQuentaDialog>(&Connector::Doc_Quenta)},
    {"Quenta factory", "quenta", generic<FactoryQuentaDialog>(&Connector::Doc_Quenta)},
    {"Dravik configuration", "dravik", generic<ConfigDravikDialog>(&Connector::Doc_Dravik)},
    {"Dravik factory", "dravik", generic<FactoryDravikDialog>(&Connector::Doc_Dravik)},
    {"Dravik output", "dravik", generic<OutputDravikDialog>(&Connector::Doc_Dravik)},
    {"Halden configuration", "halden", generic<ConfigHaldenDialog>(&Connector::Doc_Halden)},
    {"Halden factory", "halden", generic<FactoryHaldenDialog>(&Connector::Doc_Halden)},
    {"Bremmel configuration", "bremmel", generic<ConfigBremmelDialog>(&Connector::Doc_Bremmel)},
    {"Bremmel factory", "bremmel", generic<FactoryBremmelDialog>(&Connector::Doc_Bremmel)},
};

// What takes the keyboard but the buttons: fields, lists, trees, radio buttons and check boxes.
std::vector<QWidget*> fields(QWidget* window)
{
    std::vector<QWidget*> found;
    for (QWidget* w : window->findChildren<QWidget*>())
        if ((w->focusPolicy() & Qt::TabFocus) && w->isVisible() && w->isEnabled() && !qobject_cast<QPushButton*>(w) &&
            !qobject_cast<QAbstractSpinBox*>(w->parentWidget()) && !qobject_cast<QComboBox*>(w->parentWidget()))
            found.push_back(w);
    return found;
}

struct Shown {
    Shown(const Opened& o) : wire(o.model), window(o.open(wire))
    {
        window->show();
        QApplication::setActiveWindow(window.get());
        for (QTimer* timer : window->findChildren<QTimer*>())
            timer->stop();  // the clock asks for the time every second
        wire.Sent();
    }
    Wire wire;
    std::unique_ptr<QWidget> window;
};

TEST(ServiceDialogs, ReturnInAnyFieldPressesNoButtonAndSendsNothing)
{
    for (const Opened& o : WINDOWS) {
        Shown shown(o);
        QWidget* window = shown.window.get();
        QStringList pressed, defaults;
        for (QPushButton* button : window->findChildren<QPushButton*>()) {
            QObject::connect(button, &QPushButton::clicked, [&pressed, button] { pressed << button->text(); });
            if (button->isDefault() || button->autoDefault())
                defaults << button->text();
        }
        EXPECT_EQ(defaults.join(", ").toStdString(), "") << o.what << ": default buttons";
        auto* pages = window->findChild<QListWidget*>();  // the generic dialogs' pages, each in turn
        bool failed = false;
        for (int page = 0; page < (pages ? pages->count() : 1) && !failed; ++page) {
            if (pages)
                pages->setCurrentRow(page);
            for (QWidget* field : fields(window)) {
                field->setFocus();
                QTest::keyClick(field, Qt::Key_Return);
                const std::string sent = shown.wire.Sent();
                if (sent.empty() && pressed.isEmpty() && window->isVisible())
                    continue;
                ADD_FAILURE() << o.what << ", Return in a " << field->metaObject()->className() << " pressed \""
                              << pressed.join(", ").toStdString() << "\" and sent \"" << sent << "\"";
                failed = true;
                break;
            }
        }
    }
}

const Opened& window(const std::string& what)
{
    return *std::find_if(std::begin(WINDOWS), std::end(WINDOWS), [&](const Opened& o) { return o.what == what; });
}

template <class Field>
std::function<QWidget*(QWidget*)> in(const char* title, int index = 0)
{
    return [=](QWidget* w) { return group(w, title)->findChildren<Field*>()[index]; };
}
std::function<QWidget*(QWidget*)> edit(int index)
{
    return [=](QWidget* w) { return Edits(w)[size_t(index)]; };
}

std::string tolvan(const std::string& inner) { return "<arvex><tolvan>" + inner + "</tolvan></arvex>\n"; }
std::string laser(const std::string& inner) { return tolvan("<cfg><linelock>" + inner + "</linelock></cfg>"); }

TEST(ServiceDialogs, TypedValuesGoOutWhenCompleteAndButtonsSendWhatTheyName)
{
    const char* cooler = "Cooler Temperature Control";
    const char* block = "Block Temperature Control";
    const std::string laserstarttemp = tolvan("<factory><laserstarttemp>23.5</laserstarttemp></factory>");
    const struct {
        const char* window;
        std::function<QWidget*(QWidget*)> field;  // typed into, if any, over what it held
        const char* typed;
        Qt::Key key;
        const char* button;  // pressed last, if any
        std::string sent;
    } cases[] = {
        {"Laser temperature", in<QDoubleSpinBox>(cooler), "30.5", Qt::Key_Return, nullptr,
         laser("<lasercooler><control>manual</control><temp>30.5</temp></lasercooler>")},
        {"Laser temperature", in<QSpinBox>(block), "40000", Qt::Key_Tab, nullptr,
         laser("<laserblock><control>daccount</control><daccount>40000</daccount></laserblock>")},
        {"Laser temperature", in<QSpinBox>(cooler), "", Qt::Key_Up, nullptr,
         laser("<lasercooler><control>daccount</control><daccount>1</daccount></lasercooler>")},
        {"Laser temperature", in<QDoubleSpinBox>(block), "20", Qt::Key_Return, nullptr,
         laser("<laserblock><temp>20</temp></laserblock>")},  // already On
        {"Laser temperature", nullptr, "", Qt::Key_Tab, "O&ff",
         laser("<laserblock><control>off</control></laserblock>")},
        {"Laser temperature", nullptr, "", Qt::Key_Tab, "Low Range (-25...25C)",
         tolvan("<cfg><temprange>low</temprange></cfg>")},
        {"Mirrors", in<QSpinBox>("Top Heater Control"), "55", Qt::Key_Return, "Apply",
         tolvan("<cfg><heater><top><heaterpower>55</heaterpower></top></heater></cfg>")},
        {"Tolvan factory", edit(1), "23.5", Qt::Key_Return, nullptr, laserstarttemp},
        {"Tolvan factory", edit(1), "23.5", Qt::Key_Tab, "Rollback",
         laserstarttemp + FactoryCommandLine("tolvan", "rollback")},
        {"Tolvan factory", edit(10), "nan", Qt::Key_Return, nullptr, ""},
        {"Morvik factory", edit(0), "b-7", Qt::Key_Tab, "Commit",
         "<arvex><morvik><factory><serialnumber>b-7</serialnumber></factory></morvik></arvex>\n" +
             FactoryCommandLine("morvik", "commit")},
        {"Tolvan advanced", edit(0), "inf", Qt::Key_Return, "Apply", ""},
        {"Dravik advanced", in<QLineEdit>("CO2A"), "-nan", Qt::Key_Return, "Apply", ""},
        {"Halden advanced", in<QLineEdit>("DC0"), "nan", Qt::Key_Return, "Apply", ""},
        {"Tolvan calibration", edit(0), "2.5", Qt::Key_Return, nullptr, ""},
        {"Tolvan calibration", edit(0), "2.5", Qt::Key_Tab, "Span", CalLine("tolvan", "ch4spanconc", "2.5", "ch4span")},
        {"Tolvan calibration", nullptr, "", Qt::Key_Tab, "Zero", CommandLine("tolvan", "ch4zero")},
        {"Tolvan calibration", nullptr, "", Qt::Key_Tab, "Commit", CommandLine("tolvan", "calcommit")},
        {"Tolvan calibration", nullptr, "", Qt::Key_Tab, "Rollback", CommandLine("tolvan", "calrollback")},
        {"Network", nullptr, "", Qt::Key_Tab, "Reboot", CommandLine("tolvan", "reboot")},
        {"Rate", nullptr, "", Qt::Key_Tab, "&Poll", CommandLine("tolvan", "poll")},
        {"Rate", nullptr, "", Qt::Key_Tab, "Po&ll", CommandLine("tolvan", "polltest")},
        {"Quenta configuration", in<QLineEdit>("General"), "head-2", Qt::Key_Return, "Apply",
         "<arvex><quenta><cfg><head>head-2</head></cfg></quenta></arvex>\n"},  // Apply sends the edit alone
    };
    for (const auto& c : cases) {
        Shown shown(window(c.window));
        QWidget* field = c.field ? c.field(shown.window.get()) : shown.window.get();
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, c.typed);
        EXPECT_EQ(shown.wire.Sent(), "") << c.window << ": typing " << c.typed;
        QTest::keyClick(field, c.key);
        if (c.button)
            Click(shown.window.get(), c.button);
        EXPECT_EQ(shown.wire.Sent(), c.sent) << c.window << ": " << c.typed << " " << (c.button ? c.button : "");
    }
}

TEST(CommandLines, ReadAsTheInstrumentReadsThemWithTypedTextsAsTyped)
{
    const std::pair<std::string, std::string> cases[] = {
        {CommandLine("halden", "zero_dc0"), "<arvex><halden><cmd><zero_dc0>true</zero_dc0></cmd></halden></arvex>\n"},
        {FactoryCommandLine("morvik", "commit"),
         "<arvex><morvik><factory><cmd><commit>true</commit></cmd></factory></morvik></arvex>\n"},
        {CalLine("tolvan", "ch4spanconc", " 1,50 \xC2\xB5", "ch4span"),
         "<arvex><tolvan><cal><ch4spanconc> 1,50 \xC2\xB5</ch4spanconc></cal><cmd><ch4span>true</ch4span></cmd>"
         "</tolvan></arvex>\n"},
        {CalLine("dravik", "oxygen", ""), "<arvex><dravik><cal><oxygen></oxygen></cal></dravik></arvex>\n"},
        {DravikSpanLine("h2ob", 2, "1,2e3 x"), "<arvex><dravik><cal><h2obspanconc2>1,2e3 x</h2obspanconc2></cal>"
                                               "<cmd><h2obspan2>true</h2obspan2></cmd></dravik></arvex>\n"},
        {RebootLine("sarnel"), "<arvex><morvik><cmd><reboot>true</reboot></cmd></morvik></arvex>\n"},
    };
    for (const auto& [built, line] : cases)
        EXPECT_EQ(built, line);
}

}  // namespace
