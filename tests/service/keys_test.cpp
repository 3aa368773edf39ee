// What the keyboard sends through every service dialog: Return in any field presses no button, and
// typed values go out when they are complete, never prefix by prefix.

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
template <class D>
QWidget* editor(Wire& wire, D* dialog)
{
    wire.Join(dialog);
    QObject::connect(dialog, &D::CalUpdated, wire.connector.get(), &Connector::OnForceXMLUpdate);
    return dialog;
}

struct Opened {
    const char* what;
    const char* model;
    std::function<QWidget*(Wire&)> open;
};

const Opened WINDOWS[] = {
    {"Tolvan calibration", "tolvan", [](Wire& w) { return raw(w, new CalTolvanDialog(nullptr, "t", &w.Doc(), false)); }},
    {"Tolvan calibration alone", "tolvan",
     [](Wire& w) {  // as the "cal" main window holds it
         auto* window = new QMainWindow;
         window->setCentralWidget(raw(w, new CalTolvanDialog(window, "t", &w.Doc(), true)));
         return window;
     }},
    {"Tolvan advanced", "tolvan", [](Wire& w) { return editor(w, new CalAdvancedDialog(nullptr, "t", &w.Doc())); }},
    {"Dravik calibration", "dravik",
     [](Wire& w) { return raw(w, new CalDravikDialog(nullptr, "d", &w.connector->Doc_Dravik(), false)); }},
    {"Dravik advanced", "dravik",
     [](Wire& w) { return editor(w, new CalDravikAdvancedDialog(nullptr, "d", &w.connector->Doc_Dravik())); }},
    {"Halden calibration", "halden",
     [](Wire& w) { return raw(w, new CalHaldenDialog(nullptr, "h", &w.connector->Doc_Halden(), false)); }},
    {"Halden advanced", "halden",
     [](Wire& w) { return editor(w, new CalHaldenAdvancedDialog(nullptr, "h", &w.connector->Doc_Halden())); }},
    {"Laser temperature", "tolvan",
     [](Wire& w) {
         auto* dialog = new TempTolvanDialog(nullptr, "t", &w.Doc());
         w.Join(dialog);
         return dialog;
     }},
    {"Mirrors", "tolvan", [](Wire& w) { return raw(w, new HeatersTolvanDialog(nullptr, "t", &w.Doc())); }},
    {"Clock", "tolvan", [](Wire& w) { return raw(w, new ClockTolvanDialog(nullptr, "t", &w.Doc().Conf().Cfg().Clock())); }},
    {"Network", "tolvan",
     [](Wire& w) { return raw(w, new NetworkTolvanDialog(nullptr, "t", &w.Doc().Conf().Cfg().Network(), "tolvan")); }},
    {"Rate", "tolvan",
     [](Wire& w) { return raw(w, new RateDialog(nullptr, "t", &w.Doc().Conf().Output().Rate(), "tolvan")); }},
    {"Tolvan factory", "tolvan",
     [](Wire& w) { return raw(w, new FactoryTolvanDialog(nullptr, "t", &w.Doc().Conf().Factory())); }},
    {"Morvik factory", "morvik",
     [](Wire& w) { return raw(w, new FactoryMorvikDialog(nullptr, "m", &w.connector->Doc_Morvik().Conf().Factory())); }},
    {"Quenta configuration", "quenta",
     [](Wire& w) { return raw(w, new ConfigQuentaDialog(nullptr, "q", w.connector->Doc_Quenta())); }},
    {"Quenta factory", "quenta",
     [](Wire& w) { return raw(w, new FactoryQuentaDialog(nullptr, "q", w.connector->Doc_Quenta())); }},
    {"Dravik configuration", "dravik",
     [](Wire& w) { return raw(w, new ConfigDravikDialog(nullptr, "d", w.connector->Doc_Dravik())); }},
    {"Dravik factory", "dravik",
     [](Wire& w) { return raw(w, new FactoryDravikDialog(nullptr, "d", w.connector->Doc_Dravik())); }},
    {"Dravik output", "dravik",
     [](Wire& w) { return raw(w, new OutputDravikDialog(nullptr, "d", w.connector->Doc_Dravik())); }},
    {"Halden configuration", "halden",
     [](Wire& w) { return raw(w, new ConfigHaldenDialog(nullptr, "h", w.connector->Doc_Halden())); }},
    {"Halden factory", "halden",
     [](Wire& w) { return raw(w, new FactoryHaldenDialog(nullptr, "h", w.connector->Doc_Halden())); }},
    {"Bremmel configuration", "bremmel",
     [](Wire& w) { return raw(w, new ConfigBremmelDialog(nullptr, "b", w.connector->Doc_Bremmel())); }},
    {"Bremmel factory", "bremmel",
     [](Wire& w) { return raw(w, new FactoryBremmelDialog(nullptr, "b", w.connector->Doc_Bremmel())); }},
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

}  // namespace
