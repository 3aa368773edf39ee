#include "app/aboutdialog.h"
#include "app/mycalmainwindow.h"
#include "app/myframe.h"
#include "app/mymainwindow.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QTreeWidget>

#include <map>

#include "link/connector.h"
#include "tests/discovery/dnssd_double.h"
#include "tests/service/wire.h"
#include "watch/stationstatusdialog.h"

namespace {

const int kTimeoutMs = 20000;

struct ShownMessage {
    QWidget* parent;
    QString title;
};

class Windows : public ::testing::Test {
protected:
    // Settings in a directory of this process's own: parallel runs don't share geometry.
    static void SetUpTestSuite()
    {
        _settings_dir = std::make_unique<QTemporaryDir>();
        ASSERT_TRUE(_settings_dir->isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, _settings_dir->path());
    }
    static void TearDownTestSuite() { _settings_dir.reset(); }

    void SetUp() override
    {
        _messages.clear();
        Connector::SetMessageBox([](QWidget* parent, const QString& title, const QString&) {
            _messages.push_back({parent, title});
        });
        QSettings("Arvex", "sondar").clear();
        QSettings("Arvex", "sondar-cal").clear();
        DnsSdDouble::Reset();
    }

    static QByteArray StoredGeometry(const char* application)
    {
        return QSettings("Arvex", application).value("geometry").toByteArray();
    }

    static std::unique_ptr<QTemporaryDir> _settings_dir;
    // Static: a connector left over from an earlier test may still report.
    static std::vector<ShownMessage> _messages;
};

std::unique_ptr<QTemporaryDir> Windows::_settings_dir;
std::vector<ShownMessage> Windows::_messages;

// The calibration panel dials a full target and sends the opening lines, dials nothing without
// one, and reports a refused connection over itself.
TEST_F(Windows, CalibrationPanelDialsAndSendsTheOpeningLines) {
    FakeInstrument instrument;
    MyCalMainWindow window("Arvex Calibration Control Panel", "cal-dial", "127.0.0.1", instrument.server.serverPort());
    EXPECT_EQ(window.windowTitle(), "Calibration Control Panel: cal-dial");
    // A Tolvan's connector, whatever the instrument, registered under its name.
    const auto connector = Connector::LookupConnector("cal-dial");
    ASSERT_NE(connector, nullptr);
    EXPECT_EQ(connector->Type(), "tolvan");

    ASSERT_TRUE(instrument.Accept());
    QByteArray received;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        received += instrument.socket->readAll();
        return received.count('\n') >= 4;
    }, kTimeoutMs));
    EXPECT_EQ(received.toStdString(),
              "<arvex>&query_doctype;</arvex>\n"
              "<arvex>&query_changes;</arvex>\n"
              "<arvex>&query;</arvex>\n"
              "<arvex><tolvan><output><status>true</status><waveforms>true</waveforms><dataclock>true</dataclock>"
              "<dataclocksync>false</dataclocksync></output></tolvan></arvex>\n");
    EXPECT_TRUE(_messages.empty());

    // Without a full target it does not dial.
    const std::tuple<const char*, const char*, int> rows[] = {
        {"cal-browse-1", "", 0}, {"cal-browse-2", "127.0.0.1", 0}, {"cal-browse-3", "", 4410}};
    for (const auto& [name, address, port] : rows) {
        MyCalMainWindow browsing("", name, address, port);
        EXPECT_EQ(Connector::LookupConnector(name)->ConnectedTo(), "") << name;
    }

    // A refused connection is reported over the panel.
    const quint16 closed_port = instrument.server.serverPort();
    instrument.server.close();
    MyCalMainWindow refused("", "cal-refused", "127.0.0.1", closed_port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !_messages.empty(); }, kTimeoutMs));
    EXPECT_EQ(_messages[0].parent, &refused);
    EXPECT_EQ(_messages[0].title, "Connect To Instrument");
}

// In browse mode the panel dials the service of exactly its name, at the address discovery reports.
TEST_F(Windows, CalibrationPanelBrowsesForItsInstrument) {
    QTcpServer wanted;
    QTcpServer other_case;
    ASSERT_TRUE(wanted.listen(QHostAddress::LocalHost));
    ASSERT_TRUE(other_case.listen(QHostAddress::LocalHost));
    // The service whose name differs only in case comes first: dialling it would be seen.
    const std::pair<const char*, QTcpServer*> services[] = {{"CAL-BROWSE", &other_case}, {"cal-browse", &wanted}};
    for (const auto& [name, server] : services) {
        DnsSdDouble::AddRecord(FakeRecord::Address(std::string(name) + ".local.", 1, "127.0.0.1"));
        DnsSdDouble::Announce(
            {name, "_arvex-tolvan._tcp", "local.", 2, std::string(name) + ".local.", server->serverPort(), "", 0});
    }

    MyCalMainWindow window("", "cal-browse", "", 0);
    const auto connector = Connector::LookupConnector("cal-browse");
    const std::string expected = "127.0.0.1:" + std::to_string(wanted.serverPort());
    EXPECT_TRUE(QTest::qWaitFor([&] { return connector->ConnectedTo() == expected; }, kTimeoutMs))
        << connector->ConnectedTo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return wanted.hasPendingConnections(); }, kTimeoutMs));
    EXPECT_FALSE(other_case.hasPendingConnections());
}

// The File menu and the station status; the test host actions stand in no menu but are wired to the panel. Each window
// keeps its geometry apart, stored on close and restored by the next one.
TEST_F(Windows, MainWindowMenuTestHostActionsAndGeometry)
{
    {
        MyMainWindow window("Arvex Sondar", "/opt/arvex/sondar");
        window.resize(523, 311);
        window.show();
        const auto menus = window.menuBar()->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
        ASSERT_EQ(menus.size(), 2);
        EXPECT_EQ(menus[0]->title(), "&File");
        EXPECT_EQ(menus[1]->title() + "|" + menus[1]->actions()[0]->text(), "&View|&Station Status...");
        menus[1]->actions()[0]->trigger();
        EXPECT_TRUE(window.findChild<StationStatusDialog*>()->isVisible());
        QStringList texts;
        for (QAction* action : menus[0]->actions())
            texts << (action->isSeparator() ? "--" : action->text());
        EXPECT_EQ(texts, QStringList({"&About...", "&Refresh", "--", "&Open Layout...", "&Save Layout...", "--", "E&xit"}));

        auto* frame = qobject_cast<MyFrame*>(window.centralWidget());
        ASSERT_NE(frame, nullptr);
        std::map<QString, QAction*> actions;
        for (QAction* action : window.findChildren<QAction*>())
            actions[action->text()] = action;
        for (const char* text : {"&Add Test Host", "&Remove Test Host"}) {
            ASSERT_EQ(actions.count(text), 1u) << text;
            EXPECT_TRUE(actions[text]->associatedWidgets().isEmpty()) << text;
        }

        actions["&Add Test Host"]->trigger();
        ASSERT_EQ(frame->Instruments().size(), 2u);
        const InstInfo& host = frame->Instruments()[0];
        EXPECT_EQ(host.name + "|" + host.type + "|" + host.host, "ch4-testhost|tolvan|ch4-testhost.local.");
        EXPECT_EQ(host.SelectIPAddress(true), "127.0.0.1");
        EXPECT_EQ(host.addresses.begin()->Port(), 4420);
        EXPECT_EQ(frame->findChild<QTreeWidget*>()->topLevelItem(0)->text(1), "Arvex-TestHost");

        actions["&Remove Test Host"]->trigger();
        ASSERT_EQ(frame->Instruments().size(), 1u);
        EXPECT_EQ(frame->Instruments()[0].name, "Other...");
        actions["E&xit"]->trigger();
    }
    EXPECT_FALSE(StoredGeometry("sondar").isEmpty());
    EXPECT_TRUE(StoredGeometry("sondar-cal").isEmpty());
    {
        MyCalMainWindow window("", "cal-geometry", "", 0);
        window.resize(611, 499);  // above the panel's least height
        window.show();
        window.close();
    }
    EXPECT_FALSE(StoredGeometry("sondar-cal").isEmpty());
    EXPECT_NE(StoredGeometry("sondar-cal"), StoredGeometry("sondar"));
    EXPECT_EQ(MyMainWindow("Arvex Sondar", "/opt/arvex/sondar").size(), QSize(523, 311));
    EXPECT_EQ(MyCalMainWindow("", "cal-geometry", "", 0).size(), QSize(611, 499));
}

TEST(AboutTextPath, ExtensionReplaced) {
    const std::pair<std::string, std::string> rows[] = {
        {"C:\\Arvex\\sondar.exe", "C:\\Arvex\\sondar.license"},
        {"sondar.tar.gz", "sondar.tar.license"},           // only the last extension goes
        {"sondar", "sondar.license"},
        {".sondar", ".sondar.license"},                    // a leading "." is not an extension
        {"./sondar", "./sondar.license"},
        {"", ".license"},
        {"/home/a.b/sondar", "/home/a.license"},           // the last "." counts wherever it stands
        {"sondar.", "sondar.license"},
    };
    for (const auto& [program, about] : rows)
        EXPECT_EQ(AboutTextPath(program), about) << program;
}

// The About box shows its file as HTML, or one default line without it; the main window's About
// action finds the file beside the program it was started as.
TEST(About, ShowsTheFileBesideTheProgramAsHtmlOrOneDefaultLine) {
    QTemporaryDir dir;
    QFile file(dir.filePath("sondar.license"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<h1>Terms</h1>\n<p>Use it &amp; enjoy \xc3\xa5.</p>\n");
    file.close();
    const QString terms = QString::fromUtf8("Terms\nUse it & enjoy \xc3\xa5.");
    AboutDialog dialog(nullptr, file.fileName().toStdString());
    EXPECT_EQ(dialog.windowTitle(), "About this application...");
    EXPECT_EQ(dialog.size(), QSize(640, 400));
    auto* text = dialog.findChild<QTextEdit*>();
    EXPECT_TRUE(text->isReadOnly());
    EXPECT_EQ(text->toPlainText().trimmed(), terms);

    AboutDialog missing(nullptr, dir.filePath("absent.license").toStdString());
    const QString shown = missing.findChild<QTextEdit*>()->toPlainText();
    EXPECT_FALSE(shown.isEmpty());
    EXPECT_FALSE(shown.contains('\n'));

    MyMainWindow window("Arvex Sondar", dir.filePath("sondar.bin").toStdString());
    QString beside;
    QTimer::singleShot(0, &window, [&] {
        if (auto* about = window.findChild<AboutDialog*>()) {
            beside = about->findChild<QTextEdit*>()->toPlainText().trimmed();
            about->close();
        }
    });
    window.OnAbout();
    EXPECT_EQ(beside, terms);
}

}  // namespace
