#include "app/myframe.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "app/externaldialog.h"
#include "app/externaltextedit.h"
#include "link/connector.h"
#include "tests/app/app_test_util.h"
#include "tests/discovery/discovery_test_util.h"
#include "tests/discovery/dnssd_double.h"
#include "tests/service/wire.h"

namespace {

using Window = MyFrame::InstrumentWindow;
using Request = MyFrame::WindowRequest;
using Txt = std::map<std::string, std::string>;

// The panel with its one window function written down instead of opening anything.
class RecordingFrame : public MyFrame {
public:
    using MyFrame::MyFrame;
    std::vector<WindowRequest> opened;

protected:
    QDialog* OpenInstrumentWindow(const WindowRequest& request) override
    {
        opened.push_back(request);
        return nullptr;
    }
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
        for (int i = 0; i < Tree().topLevelItemCount(); ++i)
            rows.push_back(row(&Tree(), i));
        return rows;
    }

    QTreeWidgetItem* Select(const QString& name)
    {
        Tree().clearSelection();
        for (int i = 0; i < Tree().topLevelItemCount(); ++i)
            if (Tree().topLevelItem(i)->text(0) == name) {
                Tree().topLevelItem(i)->setSelected(true);
                return Tree().topLevelItem(i);
            }
        ADD_FAILURE() << "no row " << name.toStdString();
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

TEST_F(Panel, WithoutDescriptionFileOnlyOtherShowsAndAsksForItsAddress)
{
    Make();
    EXPECT_EQ(_window->windowTitle(), "");
    EXPECT_TRUE(_frame->findChildren<MyPushButton*>().empty());
    EXPECT_TRUE(DnsSdDouble::Calls("Browse").empty());
    ASSERT_EQ(Rows(), (std::vector<QStringList>{{"Other...", "", "", ""}}));
    const InstInfo& other = _frame->Instruments()[0];
    EXPECT_EQ(other.type, "other");
    EXPECT_EQ(other.host, "other.local.");
    EXPECT_EQ(other.addresses, std::set<SocketAddress>{Address("127.0.0.1", 4410)});
    EXPECT_EQ(other.txt, (Txt{{"company", "Arvex"}, {"model", ""}, {"ver", ""}}));

    // The "Other..." row asks for the address and remembers it.
    QString offered = "unset";
    // Each answer takes the offered text, types `typed` (null: keeps it), and accepts or cancels.
    auto answer = [&](const char* typed, bool accept) {
        AnswerInputDialog([&offered, typed, accept](QInputDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Connect To Other Instrument");
            EXPECT_EQ(dialog.labelText(), "Address:");
            offered = dialog.textValue();
            if (typed)
                dialog.setTextValue(typed);
            accept ? dialog.accept() : dialog.reject();
        });
    };
    answer("10.0.0.5:50111", true);
    _frame->OnItemDoubleClicked(Select("Other..."), 0);
    EXPECT_EQ(offered, "");
    EXPECT_EQ(_frame->opened,
              (std::vector<Request>{{Window::WatchBremmel, "10.0.0.5", "bremmel", "10.0.0.5", 0, 50111, false}}));
    // The last address is offered again; cancelling opens nothing and forgets it; empty opens nothing.
    answer(nullptr, false);
    _frame->OnOtherButtonClicked();
    EXPECT_EQ(offered, "10.0.0.5:50111");
    answer(nullptr, true);
    _frame->OnOtherButtonClicked();
    EXPECT_EQ(offered, "");
    EXPECT_EQ(_frame->opened.size(), 1u);

    // The fourth header is blank for an update program.
    const std::pair<const char*, const char*> rows[] = {
        {"/opt/arvex/sondar", "Log File"}, {"/opt/Arvex Update/sondar", " "},
        {"C:\\UPDATES\\sondar.exe", " "}, {"/opt/updat/sondar", "Log File"}};
    for (const auto& [program, header] : rows) {
        Make(program);
        EXPECT_EQ(Tree().headerItem()->text(3), header) << program;
    }
}

// The type word picks the model column and the window a double click opens.
TEST_F(Panel, TypeWordModelColumnAndWindow)
{
    const struct {
        const char *type, *model, *word, *shown;
        Window window;
    } rows[] = {
        {"_arvex-tolvan._tcp", "Tolvan", "tolvan", "Tolvan", Window::WatchTolvan},
        {"_arvex-morvik._tcp", "Pelsen", "morvik", "Pelsen (Tolvan)", Window::ConfigMorvik},
        {"_arvex-sarnel._tcp", "Pelsen", "sarnel", "Pelsen (Yarvel/Zelmin)", Window::ConfigMorvik},
        {"_arvex-sarnel._tcp", "Pelsen 2", "sarnel", "Pelsen 2", Window::ConfigMorvik},
        {"_arvex-halden._tcp", "Pelsen", "halden", "Pelsen", Window::WatchHalden},
        {"_arvex-sarnel-morvik._tcp", "Pelsen", "morvik", "Pelsen (Tolvan)", Window::ConfigMorvik},  // list order
        {"_arvex-bremmel._tcp", "Bremmel", "bremmel", "Bremmel", Window::WatchBremmel},
        {"_arvex-quenta._tcp", "", "quenta", "", Window::WatchQuenta},
        {"_arvex-dravik._tcp", "Dravik", "dravik", "Dravik", Window::WatchDravik},
        {"_arvex-DRAVIK._tcp", "Dravik", "unknown", "Dravik", Window::WatchTolvan},  // case counts
        {"_http._tcp", "web", "unknown", "web", Window::WatchTolvan},
    };
    for (const auto& row : rows) {
        Make();
        Announce("inst", row.type, Address("10.0.0.7", 4000), {{"model", row.model}, {"ver", "3.1"}});
        ASSERT_EQ(_frame->Instruments().size(), 2u);
        EXPECT_EQ(_frame->Instruments()[0].type, row.word) << row.type;
        EXPECT_EQ(Rows()[0], (QStringList{"inst", row.shown, "3.1", ""})) << row.type;
        _frame->OnItemDoubleClicked(Select("inst"), 0);
        if (std::string(row.word) == "unknown") {
            EXPECT_TRUE(_frame->opened.empty()) << row.type;
        } else {
            ASSERT_EQ(_frame->opened.size(), 1u) << row.type;
            EXPECT_EQ(_frame->opened[0], (Request{row.window, "inst", row.word, "10.0.0.7", 0, 4000, true}));
        }
    }
    Tree().clearSelection();
    _frame->OnItemDoubleClicked(Tree().topLevelItem(0), 0);  // without a selection
    EXPECT_TRUE(_frame->opened.empty());
}

// A second announcement of a name changes its addresses only.
TEST_F(Panel, RowsFollowAnnouncementsRemovalsAndLogging)
{
    Make();
    Announce("ch4-1", "_arvex-tolvan._tcp", Address("10.1.2.3", 4410), {{"model", "Tolvan"}, {"ver", "1.2"}},
             "tolvan-1.local.");
    Select("ch4-1");
    const QString head = "<table><tr><td><strong>NAME: </strong>ch4-1</td></tr>"
                         "<tr><td><strong>HOST: </strong>tolvan-1.local.</td></tr>"
                         "<tr><td><strong>IP: </strong>10.1.2.3:4410</td></tr>";
    const QString tail = "<tr><td><strong>model: </strong>Tolvan</td></tr>"
                         "<tr><td><strong>ver: </strong>1.2</td></tr></table>";
    EXPECT_EQ(Info(), head + tail);

    _frame->AddService("ch4-1", "_arvex-halden._tcp", "local.", 3, "elsewhere.local.", Address("fe80::1", 4410, 3),
                       {{"model", "Changed"}, {"ver", "9.9"}, {"extra", "x"}});
    // Every announcement drops the selection.
    EXPECT_TRUE(Tree().selectedItems().isEmpty());
    EXPECT_EQ(Info(), "");
    EXPECT_EQ(Rows()[0], (QStringList{"ch4-1", "Tolvan", "1.2", ""}));
    EXPECT_EQ(_frame->Instruments()[0].type, "tolvan");
    Select("ch4-1");
    EXPECT_EQ(Info(), head + "<tr><td><strong>IP: </strong>fe80::1%3:4410</td></tr>" + tail);

    // A removal takes the first of that name (case counts), whatever the type, and always rebuilds.
    Announce("CH4-1", "_arvex-halden._tcp", Address("10.0.0.2", 4430), {});
    _frame->RemoveService("ch4-1", "_arvex-halden._tcp", "local.");
    EXPECT_EQ(Rows().size(), 2u);
    EXPECT_EQ(Rows()[0][0], "CH4-1");
    Select("CH4-1");
    _frame->RemoveService("missing", "", "");
    EXPECT_TRUE(Tree().selectedItems().isEmpty());
    EXPECT_EQ(Rows().size(), 2u);

    // The log file column follows the connector of that name.
    QTemporaryDir dir;
    const auto connector = Connector::Factory(nullptr, "logged-1", "tolvan");
    const std::string log = dir.filePath("logged-1.txt").toStdString();
    connector->SetLogFileName(log);
    connector->StartLoggingToFile();
    Announce("logged-1", "_arvex-tolvan._tcp", Address("10.0.0.1", 4410), {});
    EXPECT_EQ(Rows()[1][3].toStdString(), log);
    connector->StopLoggingToFile();
    _frame->OnRefresh();
    EXPECT_EQ(Rows()[1][3], "");
}

TEST_F(Panel, OtherParsing)
{
    const struct {
        const char *text, *address;
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

TEST_F(Panel, ButtonsComeFromTheDescriptionFileAndFollowTheSelection)
{
    DescriptionFile file(
        "<config><title>Panel Test</title>"
        "<services><service>_arvex-tolvan._tcp</service><service>_arvex-halden._tcp</service></services>"
        "<defines><define><name>v</name><value>2.0</value></define></defines><buttons>"
        "<button><caption>watch-tolvan</caption></button><button><caption>cpld</caption></button>"
        "<button service=\"halden dravik\"><caption>Flash $(v)</caption><cmds><cmd>true</cmd></cmds></button>"
        "<button><caption>Plain</caption></button><button><caption>config-morvik</caption></button>"
        "<button><caption>watch-bremmel</caption></button></buttons></config>");
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
    std::vector<std::string> browsed;
    for (const DnsSdCall& call : DnsSdDouble::Calls("Browse"))
        browsed.push_back(call.type);
    EXPECT_EQ(browsed, (std::vector<std::string>{"_arvex-tolvan._tcp", "_arvex-halden._tcp"}));

    Announce("halden-1", "_arvex-halden._tcp", Address("10.0.0.3", 4430), {{"model", "Halden"}});
    Announce("tolvan-1", "_arvex-tolvan._tcp", Address("10.0.0.4", 4410), {{"model", "Tolvan"}});
    // Per selection: Flash enabled, Flash shown, Plain, CPLD, Watch Tolvan, Config Pelsen enabled.
    const struct {
        const char* select;
        bool flash, flash_shown, plain, cpld, watch, config;
    } rows[] = {
        {"halden-1", true, true, true, true, false, false},
        {nullptr, false, false, false, false, false, false},
        {"tolvan-1", false, false, true, true, true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.select ? row.select : "none");
        row.select ? (void)Select(row.select) : Tree().clearSelection();
        EXPECT_EQ(find_button(*_frame, "Flash 2.0...")->isEnabled(), row.flash);
        EXPECT_EQ(find_button(*_frame, "Flash 2.0...")->isHidden(), !row.flash_shown);
        EXPECT_EQ(find_button(*_frame, "Plain...")->isEnabled(), row.plain);
        EXPECT_EQ(find_button(*_frame, "CPLD Control Panel...")->isEnabled(), row.cpld);
        EXPECT_EQ(find_button(*_frame, "Watch Tolvan")->isEnabled(), row.watch);
        EXPECT_EQ(find_button(*_frame, "Config Pelsen")->isEnabled(), row.config);
    }
}

// A helper gets the panel's defines on standard input, then a blank line; the directory of the
// program has a blank in it, which works only because it is quoted in front of the command.
TEST_F(Panel, UpdateButtonRunsItsCommandsWithTheDefines)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid() && QDir(dir.path()).mkdir("my programs"));
    const std::string program_dir = dir.filePath("my programs").toStdString() + "/";
    QFile helper(QString::fromStdString(program_dir + "cmd_show"));
    ASSERT_TRUE(helper.open(QIODevice::WriteOnly));
    helper.write("#!/bin/sh\nIFS= read -r json\nIFS= read -r blank\nprintf '%s|%s|%s\\n' \"$1\" \"$json\" \"$blank\"\n");
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
                         "<cmd description=\"Show $(name)\">cmd_show x</cmd></cmds></button>"
                         "<button><caption>Empty</caption></button></buttons></config>");
    Make(program_dir + "sondar");
    Announce("ch4-1", "_arvex-tolvan._tcp", Address("10.1.2.3", 4410), {{"model", "Tolvan"}, {"ver", "1.2"}},
             "tolvan-1.local.");
    Announce("ch4-1", "_arvex-tolvan._tcp", Address("fe80::1", 4410, 3), {});
    Select("ch4-1");
    testing::internal::CaptureStdout();
    find_button(*_frame, "Show...")->click();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Executing command: \"" + program_dir + "\"cmd_show x\n");

    auto* dialog = _frame->findChild<ExternalDialog*>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !boxes.empty(); }, WIRE_TIMEOUT_MS));
    EXPECT_EQ(boxes[0], "Show -- Finished");
    // A define of the file is not replaced by the panel's own (ipv4).
    const std::string json = "{\"host\":\"tolvan-1.local.\",\"ip\":\"fe80::1%3\",\"ipv4\":\"from-file\","
                             "\"model\":\"Tolvan\",\"name\":\"ch4-1\",\"program_dir\":\"" + program_dir +
                             "\",\"ver\":\"1.2\"}";
    EXPECT_EQ(dialog->findChild<ExternalTextEdit*>()->toPlainText().toStdString(),
              "*** Show ch4-1 ***\nx|" + json + "|\n");
    delete dialog;

    // A button without commands, and an index out of range, do nothing.
    find_button(*_frame, "Empty...")->click();
    _frame->ExecuteExternalCommand(7, _frame->Instruments()[0]);
    EXPECT_EQ(_frame->findChild<ExternalDialog*>(), nullptr);
    ExternalDialog::SetMessageBox(nullptr);
}

// Named in the description file or on the command line, an instrument is listed as if announced.
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
    _frame->OnItemDoubleClicked(Select("far"), 0);
    EXPECT_TRUE(Info().contains("<strong>IP: </strong>fe80::9%2:4421")) << Info().toStdString();
    EXPECT_EQ(_frame->opened,
              (std::vector<Request>{{Window::WatchTolvan, "sim-tolvan", "tolvan", "127.0.0.1", 0, 4410, true},
                                    {Window::ConfigMorvik, "far", "morvik", "fe80::9", 2, 4421, true}}));
}

TEST_F(Panel, DiscoveredInstrumentsAreListed)
{
    DescriptionFile file("<config><services><service>_arvex-tolvan._tcp</service></services></config>");
    // A service error is printed and never thrown.
    DnsSdDouble::FailNext("Browse", kDNSServiceErr_Unknown);
    testing::internal::CaptureStdout();
    Make();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "ERROR: Unable to browse for service: _arvex-tolvan._tcp: Unknown Error\n");
    EXPECT_EQ(Rows().size(), 1u);

    DnsSdDouble::Announce({"ch4-sim-1", "_arvex-tolvan._tcp", "local.", 2, "tolvan-1.local.", 4410,
                           std::string("\x0cmodel=Tolvan\x07ver=1.2\x0d" "company=Arvex")});
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "10.1.2.3"));
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "fe80::1"));
    Make();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 2 && DnsSdDouble::PendingAnswers() == 0; },
                                WIRE_TIMEOUT_MS));
    EXPECT_EQ(Rows()[0], (QStringList{"ch4-sim-1", "Tolvan", "1.2", ""}));
    EXPECT_EQ(_frame->Instruments()[0].addresses,
              (std::set<SocketAddress>{Address("10.1.2.3", 4410), Address("fe80::1", 4410, 2)}));

    DnsSdDouble::Withdraw("ch4-sim-1");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 1; }, WIRE_TIMEOUT_MS));
    EXPECT_EQ(Rows()[0][0], "Other...");
}

// IPv6 link-local with its scope first (when asked for), then IPv4, then any IPv6.
TEST(InstInfo, AddressSelection)
{
    const struct {
        const char* what;
        std::set<SocketAddress> addresses;
        bool prefer_ipv6;
        std::string address;
        int scope, port;
        std::string ll;  // SelectIPv6LL
    } rows[] = {
        {"none", {}, true, "", 0, 0, ""},
        {"link-local beats IPv4", {Address("10.0.0.5", 4410), Address("fe80::1", 4411, 3)}, true, "fe80::1", 3, 4411,
         "fe80::1%3"},
        {"IPv4 when not preferring IPv6", {Address("10.0.0.5", 4410), Address("fe80::1", 4411, 3)}, false,
         "10.0.0.5", 0, 4410, "fe80::1%3"},
        {"global IPv6 comes last", {Address("2001:db8::7", 4412), Address("10.0.0.5", 4410)}, true, "10.0.0.5", 0,
         4410, "10.0.0.5"},
        {"global IPv6 alone", {Address("2001:db8::7", 4412)}, true, "2001:db8::7", 0, 4412, "2001:db8::7"},
        {"IPv4 link-local is no IPv6", {Address("169.254.1.2", 4410), Address("2001:db8::7", 4412)}, true,
         "169.254.1.2", 0, 4410, "169.254.1.2"},
        {"link-local among globals", {Address("2001:db8::7", 4412), Address("fe80::9", 4413, 2)}, true, "fe80::9", 2,
         4413, "fe80::9%2"},
        {"link-local without scope", {Address("fe80::9", 4413)}, true, "fe80::9", 0, 4413, "fe80::9"},
        {"first IPv4 by set order", {Address("10.0.0.9", 4410), Address("10.0.0.5", 4410)}, false, "10.0.0.5", 0,
         4410, "10.0.0.5"},
    };
    for (const auto& row : rows) {
        const InstInfo info{"x", row.addresses, "x.local.", "tolvan", {}};
        int scope = -1, port = -1;
        EXPECT_EQ(info.SelectIPAddress(row.prefer_ipv6, &scope, &port), row.address) << row.what;
        EXPECT_EQ(scope, row.scope) << row.what;
        EXPECT_EQ(port, row.port) << row.what;
        EXPECT_EQ(info.SelectIPAddress(row.prefer_ipv6), row.address) << row.what;
        EXPECT_EQ(info.SelectIPv6LL(), row.ll) << row.what;
    }
}

}  // namespace
