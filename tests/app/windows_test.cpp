#include "app/mycalmainwindow.h"
#include "app/mymainwindow.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

#include "link/connector.h"
namespace {

// Network waits are bounded generously; they end as soon as the condition holds.
const int kTimeoutMs = 20000;

struct ShownMessage {
    QWidget* parent;
    QString title;
};

class Windows : public ::testing::Test {
protected:
    // The windows' settings go to a directory of this process's own, so that parallel runs
    // don't see each other's geometry.
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

TEST_F(Windows, CalibrationPanelDialsAndSendsTheOpeningLines) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    MyCalMainWindow window("Arvex Calibration Control Panel", "cal-dial", "127.0.0.1", server.serverPort());
    EXPECT_EQ(window.windowTitle(), "Calibration Control Panel: cal-dial");
    // A Tolvan's connector, whatever the instrument, registered under its name.
    const auto connector = Connector::LookupConnector("cal-dial");
    ASSERT_NE(connector, nullptr);
    EXPECT_EQ(connector->Type(), "tolvan");

    ASSERT_TRUE(QTest::qWaitFor([&] { return server.hasPendingConnections(); }, kTimeoutMs));
    QTcpSocket* peer = server.nextPendingConnection();
    QByteArray received;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        received += peer->readAll();
        return received.count('\n') >= 4;
    }, kTimeoutMs));
    EXPECT_EQ(received.toStdString(),
              "<arvex>&query_doctype;</arvex>\n"
              "<arvex>&query_changes;</arvex>\n"
              "<arvex>&query;</arvex>\n"
              "<arvex><tolvan><output><status>true</status><waveforms>true</waveforms><dataclock>true</dataclock>"
              "<dataclocksync>false</dataclocksync></output></tolvan></arvex>\n");
    EXPECT_TRUE(_messages.empty());
}

TEST_F(Windows, CalibrationPanelWithoutFullTargetDoesNotDial) {
    struct Row {
        const char* name;
        const char* address;
        int port;
    };
    const Row rows[] = {
        {"cal-browse-1", "", 0},
        {"cal-browse-2", "127.0.0.1", 0},
        {"cal-browse-3", "", 4410},
    };
    for (const Row& r : rows) {
        MyCalMainWindow window("", r.name, r.address, r.port);
        const auto connector = Connector::LookupConnector(r.name);
        ASSERT_NE(connector, nullptr) << r.name;
        EXPECT_EQ(connector->ConnectedTo(), "") << r.name;
    }
}

TEST_F(Windows, RefusedConnectionIsReportedOverThePanel) {
    quint16 closed_port;
    {
        QTcpServer server;
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
        closed_port = server.serverPort();
    }
    MyCalMainWindow window("", "cal-refused", "127.0.0.1", closed_port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !_messages.empty(); }, kTimeoutMs));
    EXPECT_EQ(_messages[0].parent, &window);
    EXPECT_EQ(_messages[0].title, "Connect To Instrument");
}

TEST_F(Windows, MainWindowMenu) {
    MyMainWindow window("Arvex Sondar", "/opt/arvex/sondar");
    const auto menus = window.menuBar()->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(menus.size(), 1);
    EXPECT_EQ(menus[0]->title(), "&File");
    QStringList texts;
    for (QAction* action : menus[0]->actions())
        texts << (action->isSeparator() ? "--" : action->text());
    EXPECT_EQ(texts, QStringList({"&About...", "--", "E&xit"}));
}

// Each window keeps its geometry under its own settings, stored on close and restored when
// the next one is built.
TEST_F(Windows, GeometryIsKeptApartPerWindow) {
    {
        MyMainWindow window("Arvex Sondar", "/opt/arvex/sondar");
        window.resize(523, 311);
        window.show();
        QAction* exit = nullptr;
        for (QAction* action : window.findChildren<QAction*>())
            if (action->text() == "E&xit")
                exit = action;
        ASSERT_NE(exit, nullptr);
        exit->trigger();
        EXPECT_FALSE(window.isVisible());
    }
    EXPECT_FALSE(StoredGeometry("sondar").isEmpty());
    EXPECT_TRUE(StoredGeometry("sondar-cal").isEmpty());

    {
        MyCalMainWindow window("", "cal-geometry", "", 0);
        window.resize(611, 299);
        window.show();
        window.close();
    }
    EXPECT_FALSE(StoredGeometry("sondar-cal").isEmpty());
    EXPECT_NE(StoredGeometry("sondar-cal"), StoredGeometry("sondar"));

    MyMainWindow main_window("Arvex Sondar", "/opt/arvex/sondar");
    EXPECT_EQ(main_window.size(), QSize(523, 311));
    MyCalMainWindow cal_window("", "cal-geometry", "", 0);
    EXPECT_EQ(cal_window.size(), QSize(611, 299));
}

}  // namespace
