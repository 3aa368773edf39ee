#include "app/myframe.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QInputDialog>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/externaldialog.h"
#include "app/externaltextedit.h"
#include "tests/app/app_test_util.h"
#include "link/connector.h"
#include "tests/discovery/dnssd_double.h"

namespace {

const int kTimeoutMs = 20000;
using Window = MyFrame::InstrumentWindow;
using Txt = std::map<std::string, std::string>;

SocketAddress Address(const std::string& text, int port, unsigned scope = 0)
{
    SocketAddress address(text);
    address.Port(port);
    address.Scope(scope);
    return address;
}

// The panel with its one window function written down instead of opening anything.
class RecordingFrame : public MyFrame {
public:
    using MyFrame::MyFrame;
    std::vector<WindowRequest> opened;

protected:
    void OpenInstrumentWindow(const WindowRequest& request) override { opened.push_back(request); }
};

class Panel : public ::testing::Test {
protected:
    void SetUp() override { DnsSdDouble::Reset(); }

    RecordingFrame& Make(const std::string& program_path = "/opt/arvex/sondar",
                         const std::vector<NamedInstrument>& instruments = {})
    {
        _window = std::make_unique<QWidget>();
        _frame = new RecordingFrame(_window.get(), "Arvex Sondar", program_path, instruments);
        return *_frame;
    }

    QTreeWidget& Tree() { return *_frame->findChild<QTreeWidget*>(); }
    QString Info() { return _frame->findChild<QLabel*>()->text(); }

    std::vector<QStringList> Rows()
    {
        std::vector<QStringList> rows;
        for (int i = 0; i < Tree().topLevelItemCount(); ++i) {
            QTreeWidgetItem* item = Tree().topLevelItem(i);
            rows.push_back({item->text(0), item->text(1), item->text(2), item->text(3)});
        }
        return rows;
    }

    QTreeWidgetItem* Select(const QString& name)
    {
        for (int i = 0; i < Tree().topLevelItemCount(); ++i)
            if (Tree().topLevelItem(i)->text(0) == name) {
                Tree().topLevelItem(i)->setSelected(true);
                return Tree().topLevelItem(i);
            }
        ADD_FAILURE() << "no row " << name.toStdString();
        return nullptr;
    }

    MyPushButton* Button(const QString& text)
    {
        for (MyPushButton* button : _frame->findChildren<MyPushButton*>())
            if (button->text() == text)
                return button;
        ADD_FAILURE() << "no button " << text.toStdString();
        return nullptr;
    }

    void Announce(const std::string& name, const std::string& type, const SocketAddress& address, const Txt& txt,
                  const std::string& host = "host.local.")
    {
        _frame->AddService(name, type, "local.", 2, host, address, txt);
    }

    std::unique_ptr<QWidget> _window;
    RecordingFrame* _frame = nullptr;
};

// --- the list ---

TEST_F(Panel, WithoutDescriptionFileOnlyOtherShows)
{
    Make();
    EXPECT_EQ(_window->windowTitle(), "");
    EXPECT_TRUE(_frame->findChildren<MyPushButton*>().empty());
    EXPECT_TRUE(DnsSdDouble::Calls("Browse").empty());
    ASSERT_EQ(Rows(), (std::vector<QStringList>{{"Other...", "", "", ""}}));
    ASSERT_EQ(_frame->Instruments().size(), 1u);
    const InstInfo& other = _frame->Instruments()[0];
    EXPECT_EQ(other.type, "other");
    EXPECT_EQ(other.host, "other.local.");
    EXPECT_EQ(other.addresses, std::set<SocketAddress>{Address("127.0.0.1", 4410)});
    EXPECT_EQ(other.txt, (Txt{{"company", "Arvex"}, {"model", ""}, {"ver", ""}}));
}

TEST_F(Panel, FourthHeaderIsBlankForAnUpdateProgram)
{
    const struct {
        const char* program;
        const char* header;
    } rows[] = {
        {"/opt/arvex/sondar", "Log File"},
        {"/opt/Arvex Update/sondar", " "},
        {"C:\\UPDATES\\sondar.exe", " "},
        {"/opt/arvex/sondar-uPdAtEr", " "},
        {"/opt/updat/sondar", "Log File"},
    };
    for (const auto& row : rows) {
        Make(row.program);
        QTreeWidgetItem* header = Tree().headerItem();
        EXPECT_EQ(Tree().columnCount(), 4);
        EXPECT_EQ(header->text(0), "Name");
        EXPECT_EQ(header->text(1), "Model");
        EXPECT_EQ(header->text(2), "Version");
        EXPECT_EQ(header->text(3), row.header) << row.program;
    }
}

TEST_F(Panel, NamesSortWithoutRegardToCase)
{
    Make();
    for (const char* name : {"gamma", "Beta", "alpha"})
        Announce(name, "_arvex-tolvan._tcp", Address("10.0.0.1", 4410), {{"model", "Tolvan"}});
    std::vector<QString> names;
    for (const QStringList& row : Rows())
        names.push_back(row[0]);
    EXPECT_EQ(names, (std::vector<QString>{"alpha", "Beta", "gamma", "Other..."}));
}

TEST_F(Panel, TypeWordAndModelColumn)
{
    const struct {
        const char* type;
        const char* model;
        const char* word;
        const char* shown;
    } rows[] = {
        {"_arvex-tolvan._tcp", "Tolvan", "tolvan", "Tolvan"},
        {"_arvex-morvik._tcp", "Pelsen", "morvik", "Pelsen (Tolvan)"},
        {"_arvex-sarnel._tcp", "Pelsen", "sarnel", "Pelsen (Yarvel/Zelmin)"},
        {"_arvex-sarnel._tcp", "Pelsen 2", "sarnel", "Pelsen 2"},
        {"_arvex-halden._tcp", "Pelsen", "halden", "Pelsen"},
        {"_arvex-sarnel-morvik._tcp", "Pelsen", "morvik", "Pelsen (Tolvan)"},  // the list's order decides
        {"_arvex-bremmel._tcp", "Bremmel", "bremmel", "Bremmel"},
        {"_arvex-quenta._tcp", "", "quenta", ""},
        {"_arvex-DRAVIK._tcp", "Dravik", "unknown", "Dravik"},                 // case counts
        {"_http._tcp", "web", "unknown", "web"},
    };
    for (const auto& row : rows) {
        Make();
        Announce("inst", row.type, Address("10.0.0.1", 4410), {{"model", row.model}, {"ver", "3.1"}});
        ASSERT_EQ(_frame->Instruments().size(), 2u);
        EXPECT_EQ(_frame->Instruments()[0].type, row.word) << row.type;
        EXPECT_EQ(Rows()[0], (QStringList{"inst", row.shown, "3.1", ""})) << row.type;
    }
}

TEST_F(Panel, SecondAnnouncementChangesTheAddressesOnly)
{
    Make();
    Announce("ch4-1", "_arvex-tolvan._tcp", Address("10.1.2.3", 4410), {{"model", "Tolvan"}, {"ver", "1.2"}},
             "tolvan-1.local.");
    Select("ch4-1");
    const QString ip_line = "<tr><td><strong>IP: </strong>10.1.2.3:4410</td></tr>";
    EXPECT_EQ(Info(), "<table><tr><td><strong>NAME: </strong>ch4-1</td></tr>"
                      "<tr><td><strong>HOST: </strong>tolvan-1.local.</td></tr>" +
                          ip_line +
                          "<tr><td><strong>model: </strong>Tolvan</td></tr>"
                          "<tr><td><strong>ver: </strong>1.2</td></tr></table>");

    _frame->AddService("ch4-1", "_arvex-halden._tcp", "local.", 3, "elsewhere.local.", Address("fe80::1", 4410, 3),
                       {{"model", "Changed"}, {"ver", "9.9"}, {"extra", "x"}});
    // Every announcement drops the selection.
    EXPECT_TRUE(Tree().selectedItems().isEmpty());
    EXPECT_EQ(Info(), "");
    EXPECT_EQ(Rows()[0], (QStringList{"ch4-1", "Tolvan", "1.2", ""}));
    EXPECT_EQ(_frame->Instruments()[0].type, "tolvan");

    Select("ch4-1");
    EXPECT_EQ(Info(), "<table><tr><td><strong>NAME: </strong>ch4-1</td></tr>"
                      "<tr><td><strong>HOST: </strong>tolvan-1.local.</td></tr>" +
                          ip_line +
                          "<tr><td><strong>IP: </strong>fe80::1%3:4410</td></tr>"
                          "<tr><td><strong>model: </strong>Tolvan</td></tr>"
                          "<tr><td><strong>ver: </strong>1.2</td></tr></table>");
}

TEST_F(Panel, RemoveTakesTheFirstOfThatNameWhateverTheType)
{
    Make();
    Announce("dup", "_arvex-tolvan._tcp", Address("10.0.0.1", 4410), {});
    Announce("DUP", "_arvex-halden._tcp", Address("10.0.0.2", 4430), {});
    Select("dup");
    _frame->RemoveService("dup", "_arvex-halden._tcp", "local.");
    EXPECT_EQ(Rows().size(), 2u);
    EXPECT_EQ(Rows()[0][0], "DUP");
    Select("DUP");
    _frame->RemoveService("missing", "", "");  // still rebuilds
    EXPECT_TRUE(Tree().selectedItems().isEmpty());
    EXPECT_EQ(Rows().size(), 2u);
}

TEST_F(Panel, LogFileColumnFollowsTheConnector)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    Make();
    const auto connector = Connector::Factory(nullptr, "logged-1", "tolvan");
    const std::string log = dir.filePath("logged-1.txt").toStdString();
    connector->SetLogFileName(log);
    connector->StartLoggingToFile();
    Announce("logged-1", "_arvex-tolvan._tcp", Address("10.0.0.1", 4410), {});
    EXPECT_EQ(Rows()[0][3].toStdString(), log);
    connector->StopLoggingToFile();
    _frame->OnRefresh();
    EXPECT_EQ(Rows()[0][3], "");
}

TEST_F(Panel, ServiceErrorGoesToStandardOutput)
{
    Make();
    testing::internal::CaptureStdout();
    const bool answer = _frame->ServiceError("Error browsing: Unknown Error");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ERROR: Error browsing: Unknown Error\n");
    EXPECT_FALSE(answer);
}

// --- windows ---

TEST_F(Panel, WatchDialsTheLinkLocalAddressWithItsScope)
{
    Make();
    _frame->OnWatchTolvanButtonClicked();  // nothing selected: nothing opens
    EXPECT_TRUE(_frame->opened.empty());

    Announce("both", "_arvex-tolvan._tcp", Address("10.0.0.5", 4410), {{"model", "Tolvan"}});
    Announce("both", "_arvex-tolvan._tcp", Address("fe80::5", 4410, 4), {});
    Announce("global", "_arvex-tolvan._tcp", Address("2001:db8::5", 4410), {{"model", "Tolvan"}});
    Announce("global", "_arvex-tolvan._tcp", Address("10.0.0.6", 4410), {});
    Select("both");
    _frame->OnWatchTolvanButtonClicked();
    Tree().clearSelection();
    Select("global");
    _frame->OnWatchTolvanButtonClicked();
    ASSERT_EQ(_frame->opened.size(), 2u);
    EXPECT_EQ(_frame->opened[0],
              (MyFrame::WindowRequest{Window::WatchTolvan, "both", "tolvan", "fe80::5", 4, 4410, true}));
    EXPECT_EQ(_frame->opened[1],
              (MyFrame::WindowRequest{Window::WatchTolvan, "global", "tolvan", "10.0.0.6", 0, 4410, true}));
}

TEST_F(Panel, DoubleClickOpensByTypeWord)
{
    const struct {
        const char* type;
        Window window;
    } rows[] = {
        {"_arvex-tolvan._tcp", Window::WatchTolvan},  {"_arvex-morvik._tcp", Window::ConfigMorvik},
        {"_arvex-sarnel._tcp", Window::ConfigMorvik}, {"_arvex-quenta._tcp", Window::WatchQuenta},
        {"_arvex-dravik._tcp", Window::WatchDravik},  {"_arvex-halden._tcp", Window::WatchHalden},
        {"_arvex-bremmel._tcp", Window::WatchBremmel},
    };
    for (const auto& row : rows) {
        Make();
        Announce("inst", row.type, Address("10.0.0.7", 4000), {});
        _frame->OnItemDoubleClicked(Select("inst"), 0);
        ASSERT_EQ(_frame->opened.size(), 1u) << row.type;
        EXPECT_EQ(_frame->opened[0].window, row.window) << row.type;
        EXPECT_EQ(_frame->opened[0].address, "10.0.0.7");
        EXPECT_EQ(_frame->opened[0].port, 4000);
        EXPECT_TRUE(_frame->opened[0].from_list);
    }

    Make();
    Announce("web", "_http._tcp", Address("10.0.0.8", 80), {});
    _frame->OnItemDoubleClicked(Select("web"), 0);
    Tree().clearSelection();
    _frame->OnItemDoubleClicked(Tree().topLevelItem(0), 0);  // without a selection
    EXPECT_TRUE(_frame->opened.empty());
}

TEST_F(Panel, OtherParsing)
{
    const struct {
        const char* text;
        const char* address;
        int port;
        Window window;
        const char* type;
    } rows[] = {
        {"10.0.0.5", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:50111", "10.0.0.5", 50111, Window::WatchBremmel, "bremmel"},
        {"10.0.0.5:4430", "10.0.0.5", 4430, Window::WatchHalden, "halden"},
        {"10.0.0.5:4440", "10.0.0.5", 4440, Window::WatchDravik, "dravik"},
        {"10.0.0.5:4450", "10.0.0.5", 4450, Window::WatchQuenta, "quenta"},
        {"10.0.0.5:4420", "10.0.0.5", 4420, Window::ConfigMorvik, "morvik"},
        {"10.0.0.5:4411", "10.0.0.5", 4411, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:65535", "10.0.0.5", 65535, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:65536", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:99999999999", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:0", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:-4430", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:abc", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:4430x", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"10.0.0.5:", "10.0.0.5", 4410, Window::WatchTolvan, "tolvan"},
        {"fe80::1", "fe80", 4410, Window::WatchTolvan, "tolvan"},  // a bare IPv6 address cannot be entered
        {"host.local:4430:1", "host.local", 4410, Window::WatchTolvan, "tolvan"},
        {":4440", "", 4440, Window::WatchDravik, "dravik"},
    };
    for (const auto& row : rows) {
        const MyFrame::OtherTarget target = MyFrame::ParseOtherTarget(row.text);
        EXPECT_EQ(target.address, row.address) << row.text;
        EXPECT_EQ(target.port, row.port) << row.text;
        EXPECT_EQ(target.window, row.window) << row.text;
        EXPECT_EQ(target.type, row.type) << row.text;
    }
}

TEST_F(Panel, OtherRowAsksForTheAddressAndRemembersIt)
{
    Make();
    QTreeWidgetItem* other = Select("Other...");
    QString offered = "unset";
    AnswerInputDialog([&](QInputDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Connect To Other Instrument");
        EXPECT_EQ(dialog.labelText(), "Address:");
        EXPECT_EQ(dialog.textEchoMode(), QLineEdit::Normal);
        offered = dialog.textValue();
        dialog.setTextValue("10.0.0.5:50111");
        dialog.accept();
    });
    _frame->OnItemDoubleClicked(other, 0);
    EXPECT_EQ(offered, "");
    ASSERT_EQ(_frame->opened.size(), 1u);
    EXPECT_EQ(_frame->opened[0],
              (MyFrame::WindowRequest{Window::WatchBremmel, "10.0.0.5", "bremmel", "10.0.0.5", 0, 50111, false}));

    // The last address is offered again; cancelling opens nothing and forgets it.
    AnswerInputDialog([&](QInputDialog& dialog) {
        offered = dialog.textValue();
        dialog.reject();
    });
    _frame->OnOtherButtonClicked();
    EXPECT_EQ(offered, "10.0.0.5:50111");
    AnswerInputDialog([&](QInputDialog& dialog) {
        offered = dialog.textValue();
        dialog.accept();  // empty: nothing opens
    });
    _frame->OnOtherButtonClicked();
    EXPECT_EQ(offered, "");
    EXPECT_EQ(_frame->opened.size(), 1u);
}

// --- the description file ---

const char* const kButtonsFile =
    "<config><title>Panel Test</title>"
    "<services><service>_arvex-tolvan._tcp</service><service>_arvex-halden._tcp</service></services>"
    "<defines><define><name>v</name><value>2.0</value></define></defines>"
    "<buttons>"
    "<button><caption>watch-tolvan</caption></button>"
    "<button><caption>cpld</caption></button>"
    "<button service=\"halden dravik\"><caption>Flash $(v)</caption><cmds><cmd>true</cmd></cmds></button>"
    "<button><caption>Plain</caption></button>"
    "<button><caption>config-morvik</caption></button>"
    "<button><caption>watch-bremmel</caption></button>"
    "</buttons></config>";

TEST_F(Panel, ButtonsComeFromTheDescriptionFile)
{
    DescriptionFile file(kButtonsFile);
    Make();
    EXPECT_EQ(_window->windowTitle(), "Panel Test");
    std::vector<MyFrame::ButtonMarkup> markups;
    _frame->GetButtonList(markups);
    ASSERT_EQ(markups.size(), 6u);
    EXPECT_EQ(markups[2].caption, "Flash 2.0");
    EXPECT_EQ(markups[2].service, "halden dravik");

    QStringList texts;
    for (MyPushButton* button : _frame->findChildren<MyPushButton*>()) {
        texts << button->text();
        EXPECT_FALSE(button->isEnabled()) << button->text().toStdString();
        EXPECT_EQ(button->Index(), unsigned(texts.size() - 1));
    }
    EXPECT_EQ(texts, (QStringList{"Watch Tolvan", "CPLD Control Panel...", "Flash 2.0...", "Plain...", "Config Pelsen",
                                  "watch-bremmel..."}));
    EXPECT_TRUE(Button("Flash 2.0...")->isHidden());
    EXPECT_FALSE(Button("Plain...")->isHidden());

    std::vector<std::string> browsed;
    for (const DnsSdCall& call : DnsSdDouble::Calls("Browse"))
        browsed.push_back(call.type);
    EXPECT_EQ(browsed, (std::vector<std::string>{"_arvex-tolvan._tcp", "_arvex-halden._tcp"}));
}

TEST_F(Panel, SelectionDecidesTheButtons)
{
    DescriptionFile file(kButtonsFile);
    Make();
    Announce("halden-1", "_arvex-halden._tcp", Address("10.0.0.3", 4430), {{"model", "Halden"}});
    Announce("tolvan-1", "_arvex-tolvan._tcp", Address("10.0.0.4", 4410), {{"model", "Tolvan"}});

    Select("halden-1");
    EXPECT_TRUE(Button("Flash 2.0...")->isEnabled());
    EXPECT_FALSE(Button("Flash 2.0...")->isHidden());
    EXPECT_TRUE(Button("Plain...")->isEnabled());
    EXPECT_TRUE(Button("CPLD Control Panel...")->isEnabled());
    EXPECT_FALSE(Button("Watch Tolvan")->isEnabled());  // not a Tolvan
    EXPECT_FALSE(Button("Config Pelsen")->isEnabled());

    Tree().clearSelection();
    EXPECT_TRUE(Button("Flash 2.0...")->isHidden());
    EXPECT_FALSE(Button("Plain...")->isEnabled());
    EXPECT_EQ(Info(), "");

    Select("tolvan-1");
    EXPECT_FALSE(Button("Flash 2.0...")->isEnabled());
    EXPECT_TRUE(Button("Flash 2.0...")->isHidden());
    EXPECT_TRUE(Button("Plain...")->isEnabled());
    EXPECT_TRUE(Button("Watch Tolvan")->isEnabled());
}

TEST_F(Panel, UpdateButtonRunsItsCommandsWithTheDefines)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile helper(dir.filePath("cmd_show"));
    ASSERT_TRUE(helper.open(QIODevice::WriteOnly));
    helper.write("#!/bin/sh\nIFS= read -r json\nprintf '%s\\n' \"$json\"\n");
    helper.close();
    helper.setPermissions(helper.permissions() | QFileDevice::ExeOwner);

    std::vector<QString> boxes;
    ExternalDialog::SetMessageBox(
        [&](QWidget*, QMessageBox::Icon, const QString& title, const QString&, QMessageBox::StandardButtons) {
            boxes.push_back(title);
            return QMessageBox::Ok;
        });
    DescriptionFile file("<config><defines><define><name>ipv4</name><value>from-file</value></define></defines>"
                         "<buttons><button><caption>Show</caption><cmds>"
                         "<cmd description=\"Show $(name)\">cmd_show</cmd></cmds></button>"
                         "<button><caption>Empty</caption></button></buttons></config>");
    Make(dir.filePath("sondar").toStdString());
    Announce("ch4-1", "_arvex-tolvan._tcp", Address("10.1.2.3", 4410), {{"model", "Tolvan"}, {"ver", "1.2"}},
             "tolvan-1.local.");
    Announce("ch4-1", "_arvex-tolvan._tcp", Address("fe80::1", 4410, 3), {});
    Select("ch4-1");
    ASSERT_TRUE(Button("Show...")->isEnabled());
    Button("Show...")->click();

    auto* dialog = _frame->findChild<ExternalDialog*>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !boxes.empty(); }, kTimeoutMs));
    EXPECT_EQ(boxes[0], "Show -- Finished");
    const std::string json = "{\"host\":\"tolvan-1.local.\",\"ip\":\"fe80::1%3\",\"ipv4\":\"from-file\","
                             "\"model\":\"Tolvan\",\"name\":\"ch4-1\",\"program_dir\":\"" +
                             dir.path().toStdString() + "/\",\"ver\":\"1.2\"}";
    EXPECT_EQ(dialog->findChild<ExternalTextEdit*>()->toPlainText().toStdString(),
              "*** Show ch4-1 ***\n" + json + "\n");
    delete dialog;

    // A button without commands, and an index out of range, do nothing.
    Button("Empty...")->click();
    _frame->ExecuteExternalCommand(7, _frame->Instruments()[0]);
    EXPECT_EQ(_frame->findChild<ExternalDialog*>(), nullptr);
    ExternalDialog::SetMessageBox(nullptr);
}

// Named in the description file or on the command line, an instrument is a row like an
// announced one, and opens the window its model calls for on its address.
TEST_F(Panel, InstrumentsNamedByHandAreListedAsIfAnnounced)
{
    DescriptionFile file("<config><instruments><instrument><name>sim-tolvan</name><model>tolvan</model>"
                         "<address>127.0.0.1</address></instrument><instrument><name>broken</name></instrument>"
                         "</instruments></config>");
    testing::internal::CaptureStderr();
    Make("/opt/arvex/sondar", {NamedInstrument::Parse("far=morvik@[fe80::9%2]:4421")});
    EXPECT_NE(testing::internal::GetCapturedStderr().find(": skipping <instrument> \"broken\": unknown model"),
              std::string::npos);
    EXPECT_EQ(Rows(), (std::vector<QStringList>{{"far", "Pelsen (Tolvan)", "", ""},
                                                {"Other...", "", "", ""},
                                                {"sim-tolvan", "Tolvan", "", ""}}));

    _frame->OnItemDoubleClicked(Select("sim-tolvan"), 0);
    Tree().clearSelection();
    _frame->OnItemDoubleClicked(Select("far"), 0);
    EXPECT_TRUE(Info().contains("<strong>IP: </strong>fe80::9%2:4421")) << Info().toStdString();
    ASSERT_EQ(_frame->opened.size(), 2u);
    EXPECT_EQ(_frame->opened[0],
              (MyFrame::WindowRequest{Window::WatchTolvan, "sim-tolvan", "tolvan", "127.0.0.1", 0, 4410, true}));
    EXPECT_EQ(_frame->opened[1],
              (MyFrame::WindowRequest{Window::ConfigMorvik, "far", "morvik", "fe80::9", 2, 4421, true}));
}

// --- with discovery ---

TEST_F(Panel, DiscoveredInstrumentsAreListed)
{
    DescriptionFile file("<config><services><service>_arvex-tolvan._tcp</service></services></config>");
    FakeService tolvan;
    tolvan.name = "ch4-sim-1";
    tolvan.type = "_arvex-tolvan._tcp";
    tolvan.host = "tolvan-1.local.";
    tolvan.port = 4410;
    tolvan.txt = std::string("\x0cmodel=Tolvan\x07ver=1.2\x0d" "company=Arvex");
    DnsSdDouble::Announce(tolvan);
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "10.1.2.3"));
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "fe80::1"));
    Make();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 2 && DnsSdDouble::PendingAnswers() == 0; },
                                kTimeoutMs));
    EXPECT_EQ(Rows()[0], (QStringList{"ch4-sim-1", "Tolvan", "1.2", ""}));
    EXPECT_EQ(_frame->Instruments()[0].addresses,
              (std::set<SocketAddress>{Address("10.1.2.3", 4410), Address("fe80::1", 4410, 2)}));

    DnsSdDouble::Withdraw("ch4-sim-1");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 1; }, kTimeoutMs));
    EXPECT_EQ(Rows()[0][0], "Other...");
}

TEST_F(Panel, BrowseFailureIsPrinted)
{
    DescriptionFile file("<config><services><service>_arvex-tolvan._tcp</service></services></config>");
    DnsSdDouble::FailNext("Browse", kDNSServiceErr_Unknown);
    testing::internal::CaptureStdout();
    Make();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "ERROR: Unable to browse for service: _arvex-tolvan._tcp: Unknown Error\n");
    EXPECT_EQ(Rows().size(), 1u);
}

}  // namespace
