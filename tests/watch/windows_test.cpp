// The watch windows: the Tolvan's table with its charts, drags and log switch; the other models' windows,
// the I/O console and the Morvik's configuration window.

#include <functional>

#include "libskarn/dochalden.h"
#include "libskarn/doctolvan.h"
#include "service/commands.h"
#include "service/genericconfigdialog.h"
#include "tests/watch/watch_test_util.h"
#include "watch/configmorvikdialog.h"
#include "watch/fpgahaldendialog.h"
#include "watch/mytablewidget.h"
#include "watch/plotdialog.h"
#include "watch/rawdatadialog.h"
#include "watch/stationstatusdialog.h"
#include "watch/watchbremmeldialog.h"
#include "watch/watchdravikdialog.h"
#include "watch/watchhaldendialog.h"
#include "watch/watchquentadialog.h"
#include "watch/watchtolvandialog.h"
#include "watch/widetolvandialog.h"

Q_DECLARE_METATYPE(std::string)

namespace {

class WatchTable : public ::testing::Test {
protected:
    void TearDown() override { delete window; }
    QStringList Column(int column)
    {
        QStringList texts;
        for (int row = 0; row < table->rowCount(); ++row)
            texts << (table->item(row, column) ? table->item(row, column)->text() : "<none>");
        return texts;
    }
    void Feed(const std::string& line) { window->GetConnector().HandleData(line); }
    WatchTolvanDialog* window = new WatchTolvanDialog(nullptr, test_host(), "tolvan");
    MyTableWidget* table = window->findChild<MyTableWidget*>();
};

TEST_F(WatchTable, PairsFillFromHeadersKeepTheirRowsAndChartOrDragFromEitherCell)
{
    QStringList labels;
    for (int column = 0; column < table->columnCount(); ++column)
        labels << table->horizontalHeaderItem(column)->text();
    EXPECT_EQ(labels, (QStringList{"DATA", "", "DATASTAT", "", "DATADIAG", "", "DATACLOCKSYNC", "", "DATATEST", ""}));
    const QStringList none{"<none>", "<none>", "<none>", "<none>", "<none>", "<none>"};
    // A header before any data: the name column fills, the value column stays empty.
    Feed("DATASTATH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tLCT\tCHK\n");
    EXPECT_EQ(Column(2), (QStringList{"MSEC", "SECONDS", "NANOSECONDS", "DIAG", "LCT", "CHK"}));
    EXPECT_EQ(Column(3), none);
    // Only "DATASTAT" repaints, and then every value column.
    Feed("DATAH\tA\tB\tC\tD\tCHK\n");
    Feed(with_sum("DATA\t1\t2\t3\t4\t"));
    EXPECT_EQ(Column(1), none);
    Feed(with_sum("DATASTAT\t0\t100\t500000000\t5\t25.125\t"));
    EXPECT_EQ(Column(1).mid(0, 4), (QStringList{"1", "2", "3", "4"}));  // then the sum, then a blank
    EXPECT_EQ(Column(1)[5], "<none>");
    EXPECT_EQ(Column(3).mid(0, 5), (QStringList{"0", "100", "500000000", "5", "25.125"}));
    // A record that shortens leaves blanks; no row goes.
    Feed("DATAH\tA\tB\n");
    EXPECT_EQ(Column(0), (QStringList{"A", "B", "", "", "", "<none>"}));
    EXPECT_EQ(table->rowCount(), 6);
    EXPECT_FALSE(table->item(0, 0)->flags() & Qt::ItemIsEditable);
    for (int column : {0, 1})
        window->OnCellDoubleClicked(1, column);
    window->OnCellDoubleClicked(7, 0);  // past the record: a chart with nothing on it
    const QList<PlotDialog*> plots = window->findChildren<PlotDialog*>();
    ASSERT_EQ(plots.size(), 3);
    for (PlotDialog* plot : plots.mid(0, 2)) {
        ASSERT_EQ(plot->Variables().size(), 1u);
        EXPECT_EQ(plot->Variables()[0]->text, test_host() + ":DATA:B");
        EXPECT_EQ(plot->windowTitle(), "Tolvan Data");
    }
    EXPECT_TRUE(plots[2]->Variables().empty());
    EXPECT_EQ(window->GetVarString(0, 9), "");  // no header for DATATEST yet
    // A drag starts at three drag distances.
    const int distance = 3 * QApplication::startDragDistance();
    const struct { int moved; Qt::MouseButtons buttons; bool drags; } cases[] = {
        {distance - 1, Qt::LeftButton, false}, {distance, Qt::LeftButton, true}, {distance, Qt::NoButton, false}};
    for (const auto& c : cases) {
        QCursor::setPos(200, 200);
        window->OnCellPressed(1, 0);
        // Ends the drag's own event loop where the platform has one.
        QTimer::singleShot(0, [] { QDrag::cancel(); });
        QMouseEvent move(QEvent::MouseMove, QPointF(10, 10), QPointF(200, 200 + c.moved), Qt::NoButton, c.buttons,
                         Qt::NoModifier);
        QApplication::sendEvent(table->viewport(), &move);
        QDrag* drag = window->findChild<QDrag*>();
        EXPECT_EQ(drag != nullptr, c.drags) << c.moved;
        if (drag) {
            EXPECT_EQ(drag->mimeData()->text().toStdString(), test_host() + ":DATA:B");
            delete drag;
        }
    }
}

TEST_F(WatchTable, LogSwitchIsSharedThroughTheConnector)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("watch.txt");
    QPushButton* log = find_button(*window, "Log...");
    ASSERT_TRUE(log);
    QSignalSpy changed(window, &WatchDialog::LogStatusChanged);
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->windowTitle(), "Log Data To File");
        dialog->selectFile(path);
        static_cast<QDialog*>(dialog)->accept();
    });
    log->click();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(log->text(), "Stop Log");
    EXPECT_TRUE(window->GetConnector().IsLogging());
    EXPECT_EQ(window->GetConnector().LogFileName(), path.toStdString());
    WatchTolvanDialog second(nullptr, test_host(), "tolvan");
    EXPECT_EQ(&second.GetConnector(), &window->GetConnector());
    EXPECT_TRUE(find_button(second, "Stop Log"));
    log->click();
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(log->text(), "Log...");
    EXPECT_FALSE(window->GetConnector().IsLogging());
}

std::unique_ptr<WatchModelDialog> make_window(const std::string& type, const std::string& name)
{
    if (type == "quenta")
        return std::make_unique<WatchQuentaDialog>(nullptr, name, type);
    if (type == "dravik")
        return std::make_unique<WatchDravikDialog>(nullptr, name, type);
    if (type == "halden")
        return std::make_unique<WatchHaldenDialog>(nullptr, name, type);
    return std::make_unique<WatchBremmelDialog>(nullptr, name, type);
}

TEST(WatchModels, AnnouncedHeadersAddOnePairEach)
{
    auto window = make_window("dravik", test_host());
    auto* table = window->findChild<MyTableWidget*>();
    Connector& link = window->GetConnector();
    for (const char* line : {"DATALTH\tTIME\tPPFD\n", "DATACLOCKH\tTIME\n", "DATALTH\tTIME\tPPFD\tT\n", "DATAGASH\tCO2\n"})
        link.HandleData(line);
    window->GotConnectorHeaderMatch(link, "DATXH");  // too short to be a record's header
    QStringList labels;
    for (int column = 0; column < table->columnCount(); column += 2)
        labels << table->horizontalHeaderItem(column)->text();
    EXPECT_EQ(labels, (QStringList{"DATA", "DATASTAT", "DATADIAG", "DATALT", "DATAGAS"}));
    EXPECT_EQ(cell(*table, 2, 6), "T");  // the second arrival refreshed the pair
    // What a double click or a drag would chart.
    EXPECT_EQ(window->GetVarString(1, 6), test_host() + ":DATALT:PPFD");
}

// Feeds records until the table shows `text` at (row, column), or gives up.
bool shows(Connector& link, const QTableWidget& table, int row, int column, const QString& text,
           const std::function<std::string()>& next_line)
{
    return QTest::qWaitFor([&] {
        link.HandleData(next_line());
        return cell(table, row, column) == text;
    }, WIRE_TIMEOUT_MS);
}

TEST(WatchModels, HaldenRefreshesOnItsClockAndQuentaOnDataTime)
{
    for (const char* type : {"halden", "quenta"}) {
        auto window = make_window(type, test_host() + type);
        auto* table = window->findChild<MyTableWidget*>();
        Connector& link = window->GetConnector();
        link.HandleData("DATAH\tTIME\tA\tB\tCHK\n");
        link.HandleData(with_sum("DATA\t100\t1\t2\t"));
        ASSERT_EQ(cell(*table, 1, 1), "1") << type;
        // The time stamps stand still: only the computer's clock lets a new value through.
        if (std::string(type) == "halden") {
            EXPECT_TRUE(shows(link, *table, 1, 1, "7", [] { return with_sum("DATA\t100\t7\t2\t"); }));
        } else {
            link.HandleData(with_sum("DATA\t100\t7\t2\t"));
            link.HandleData(with_sum("DATA\t100.4\t7\t2\t"));
            EXPECT_EQ(cell(*table, 1, 1), "1");
        }
        EXPECT_TRUE(shows(link, *table, 1, 1, "8", [] { return with_sum("DATA\t100.5\t8\t2\t"); })) << type;
    }
}

TEST(WatchModels, BremmelPassesABurstAndHoldsTheNextForHalfASecond)
{
    auto window = make_window("bremmel", test_host());
    auto* table = window->findChild<MyTableWidget*>();
    Connector& link = window->GetConnector();
    link.HandleData("DATAH\tA\tB\tSEC\tNSEC\tCHK\n");
    link.HandleData("DATAGPSH\tSEC\tNSEC\tLAT\tCHK\n");
    const struct { const char* line; int column; const char* shown; } steps[] = {
        {"DATA\t1\t2\t100\t0\t", 1, "1"},
        {"DATAGPS\t100\t0\t47.1\t", 7, "47.1"},           // the same burst
        {"DATA\t5\t2\t100\t300000000\t", 1, "1"},        // 0.3 s later: held
        {"DATAGPS\t100\t600000000\t47.2\t", 7, "47.2"},  // 0.6 s later: shown, and only its own column
        {"DATA\t6\t2\t100\t600000000\t", 1, "6"},
    };
    for (const auto& step : steps) {
        link.HandleData(with_sum(step.line));
        EXPECT_EQ(cell(*table, step.column == 1 ? 0 : 2, step.column), step.shown) << step.line;
    }
}

// Takes the window's connection; true once its first query has come, so that it can send.
bool take_window(FakeInstrument& wire)
{
    return wire.Accept() && wire.WaitForText("&query_doctype;") == "<arvex>&query_doctype;</arvex>\n";
}

TEST(WatchModels, EveryCommandButtonSendsItsLineAndConfigAndFactoryOpenOnceAsPages)
{
    const struct { const char* type; const char* event; const char* button; const char* element; } rows[] = {
        // The event is fed first, to label a toggle.
        {"quenta", "", "Lt Src On", "connectlightsource"},
        {"quenta", "LIGHTSOURCECONNECTED", "Lt Src Off", "disconnectlightsource"},
        {"quenta", "LIGHTSOURCEDISCONNECTED", "Lt Src On", "connectlightsource"},
        {"dravik", "", "Reboot", "reboot"}, {"dravik", "", "Lt Src On", "connectlightsource"},
        {"dravik", "LIGHTSOURCECONNECTED", "Lt Src Off", "disconnectlightsource"}, {"dravik", "", "Pwr Off", "poweroff"},
        {"dravik", "POWEROFF", "Pwr On", "poweron"}, {"dravik", "POWERON", "Pwr Off", "poweroff"},
        {"halden", "", "Reboot", "reboot"}, {"halden", "", "Rect", "rect"}, {"halden", "", "MPF", "mpf"},
        {"halden", "", "Induction", "induction"}, {"halden", "", "Dark", "dark"}, {"halden", "", "Break", "break"},
        {"halden", "", "Reset", "reset"}, {"bremmel", "", "Start USB Logging", "logusbstart"},
        {"bremmel", "", "Stop USB Logging", "logusbstop"}, {"bremmel", "", "Eject USB", "ejectusb"},
    };
    std::map<std::string, std::pair<std::unique_ptr<WatchModelDialog>, std::unique_ptr<FakeInstrument>>> windows;
    for (const auto& row : rows) {
        auto& [window, wire] = windows[row.type];
        if (!window) {
            wire = std::make_unique<FakeInstrument>();
            window = make_window(row.type, test_host() + row.type);
            window->Connect("127.0.0.1", 0, wire->server.serverPort());
            ASSERT_TRUE(take_window(*wire)) << row.type;
        }
        if (*row.event)
            window->GetConnector().HandleData(std::string("DATAEVENT\t") + row.event + "\tnow\n");
        QPushButton* button = find_button(*window, row.button);
        ASSERT_TRUE(button) << row.type << " " << row.button;
        button->click();
        const std::string line = CommandLine(row.type, row.element);
        EXPECT_EQ(wire->WaitForText(line), line) << row.type << " " << row.button;
    }
    for (const auto& [type, window_and_wire] : windows) {
        WatchModelDialog& window = *window_and_wire.first;
        for (const char* button : {"Config...", "Factory...", "Config..."})
            find_button(window, button)->click();
        const auto dialogs = window.findChildren<GenericConfigDialog*>();
        ASSERT_EQ(dialogs.size(), 2) << type;
        EXPECT_EQ(dialogs[0]->windowTitle().toStdString(), "Configuration: " + test_host() + type);
        EXPECT_EQ(dialogs[1]->windowTitle().toStdString(), "Factory Settings: " + test_host() + type);
        EXPECT_GT(dialogs[0]->Pages()->count(), 1) << type;
    }
}

TEST(WatchModels, ConsoleRunsOnceOrRepeatsAndAddsOut)
{
    qRegisterMetaType<std::string>();
    const struct { const char* text; const char* sent; } rows[] = {
        {"w 1 2", "w 1 2\nout\n"}, {"w 1 2\nOUT", "w 1 2\nOUT\n"}, {"read Out", "read Out\n"}};
    for (const auto& row : rows) {
        FPGAHaldenDialog console(nullptr, "h1");
        QSignalSpy sent(&console, &FPGAHaldenDialog::SendRawText);
        console.findChild<QTextEdit*>()->setPlainText(row.text);
        find_button(console, "Run")->click();
        ASSERT_TRUE(sent.count() > 0 || sent.wait(WIRE_TIMEOUT_MS));
        EXPECT_EQ(sent[0][0].value<std::string>(), row.sent);
        EXPECT_TRUE(find_button(console, "Run")) << "run once stops by itself";
    }
    FPGAHaldenDialog console(nullptr, "h1");
    QSignalSpy sent(&console, &FPGAHaldenDialog::SendRawText);
    console.findChild<QComboBox*>()->setCurrentIndex(3);  // 100 Hz
    find_button(console, "Run")->click();
    ASSERT_TRUE(sent.wait(WIRE_TIMEOUT_MS) && (sent.count() > 1 || sent.wait(WIRE_TIMEOUT_MS)));
    find_button(console, "Stop")->click();
    find_button(console, "Clear")->click();
    EXPECT_EQ(sent.last()[0].value<std::string>(), "\nclr\n");
}

TEST(WatchModels, MorvikConfigurationAppliesTheHead)
{
    FakeInstrument wire;
    ConfigMorvikDialog dialog(nullptr, test_host(), "morvik");
    dialog.Connect("127.0.0.1", 0, wire.server.serverPort());
    EXPECT_EQ(dialog.windowTitle().toStdString(), "Configuring Pelsen: " + test_host() + ": IP=127.0.0.1");
    ASSERT_TRUE(take_window(wire));
    // The instrument's first answer makes the replica clean.
    Connector::LookupConnector(test_host())->HandleXML("<arvex><morvik><name>m</name></morvik></arvex>");
    dialog.findChild<QLineEdit*>()->setText("head-7");
    find_button(dialog, "Apply")->click();
    const std::string head = "<arvex><morvik><cfg><head>head-7</head></cfg></morvik></arvex>\n";
    EXPECT_EQ(wire.WaitForText(head), head);
    EXPECT_TRUE(find_button(dialog, "Factory...")->isEnabled());
    ConfigMorvikDialog sarnel(nullptr, test_host() + "s", "sarnel");
    EXPECT_FALSE(find_button(sarnel, "Factory...")->isEnabled());
}

// Return in any field of a watch window or of a tool window it opens presses none of its buttons:
// every button there sends to the instrument or throws the user's edits away.
TEST(WatchKeys, ReturnPressesNoButtonInAnyWindow)
{
    DocTolvan tolvan;
    DocHalden halden;
    const std::function<QDialog*()> opens[] = {
        [] { return new WatchTolvanDialog(nullptr, test_host() + "tolvan", "tolvan"); },
        [] { return make_window("quenta", test_host() + "quenta").release(); },
        [] { return make_window("dravik", test_host() + "dravik").release(); },
        [] { return make_window("halden", test_host() + "halden").release(); },
        [] { return make_window("bremmel", test_host() + "bremmel").release(); },
        [] { return new ConfigMorvikDialog(nullptr, test_host() + "morvik", "morvik"); },
        [] { return new FPGAHaldenDialog(nullptr, test_host()); },
        [&] { return new RawDataDialog(nullptr, test_host(), &halden.Conf().Cfg().Rawdatacapture()); },
        [&] { return new WideTolvanDialog(nullptr, test_host(), tolvan, "a:DATAR:W", "a:DATAS:W", "a:DATASTAT:T"); },
        [] { return new StationStatusDialog(nullptr); },
    };
    for (const auto& open : opens) {
        std::unique_ptr<QDialog> window(open());
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        int pressed = 0;
        for (QPushButton* button : window->findChildren<QPushButton*>()) {
            EXPECT_FALSE(button->isDefault() || button->autoDefault())
                << window->windowTitle().toStdString() << ": " << button->text().toStdString();
            QObject::connect(button, &QPushButton::clicked, [&] { ++pressed; });
        }
        for (QWidget* field : window->findChildren<QWidget*>())
            if ((field->focusPolicy() & Qt::TabFocus) && field->isVisible() && !qobject_cast<QPushButton*>(field)) {
                field->setFocus();
                QTest::keyClick(field, Qt::Key_Return);
            }
        EXPECT_EQ(pressed, 0) << window->windowTitle().toStdString();
        EXPECT_TRUE(window->isVisible()) << window->windowTitle().toStdString();
    }
}

}  // namespace
