#include "app/externaldialog.h"
#include "app/externaltextedit.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

const int kTimeoutMs = 20000;

// --- the output area ---

// The colour of the character at `position` of the area.
QColor ColourAt(ExternalTextEdit& edit, int position)
{
    QTextCursor cursor(edit.document());
    cursor.setPosition(position + 1);
    return cursor.charFormat().foreground().color();
}

// Each row appends its pieces in turn; only a leading carriage return redraws the last line, and
// a NUL ends the piece.
TEST(ExternalTextEdit, AppendsRedrawsTheLastLineAndPassesKeysOn)
{
    const struct {
        std::vector<QByteArray> pieces;
        const char* text;
    } rows[] = {
        {{"first line\nprogress 10%", "\rprogress 20%"}, "first line\nprogress 20%"},
        {{"first line\nprogress 10%", "\rprogress 30%\n"}, "first line\nprogress 30%\n"},
        {{"a\n", "\rdone", ""}, "a\ndone"},  // after a line feed a redraw takes nothing away
        {{"out", QByteArray("err\0hidden", 10)}, "outerr"},
    };
    for (const auto& row : rows) {
        ExternalTextEdit edit(nullptr);
        for (const QByteArray& piece : row.pieces)
            edit.AppendPlainText(piece, Qt::black);
        EXPECT_EQ(edit.toPlainText(), row.text) << row.text;
    }
    ExternalTextEdit edit(nullptr);
    edit.AppendPlainText("keep\nout", Qt::black);
    edit.AppendPlainText("A\rB", Qt::red);
    EXPECT_TRUE(edit.toPlainText().startsWith("keep\noutA"));
    EXPECT_TRUE(edit.toPlainText().endsWith("B"));
    EXPECT_EQ(ColourAt(edit, 5), QColor(Qt::black));
    EXPECT_EQ(ColourAt(edit, 8), QColor(Qt::red));

    // Keys are passed on, not typed.
    QString keys;
    QObject::connect(&edit, &ExternalTextEdit::KeyPressed, [&](QKeyEvent* event) { keys += event->text(); });
    const QString before = edit.toPlainText();
    QTest::keyClicks(&edit, "ab");
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(keys, "ab\r");
    EXPECT_EQ(edit.toPlainText(), before);
}

// --- the runner ---

// A box as icon, title, text and buttons; plain types print readably when rows differ.
using Box = std::tuple<int, std::string, std::string, int>;

// Runs button sequences against real child processes, /bin/sh scripts in a temporary directory.
// Boxes are written down and answered with `answers` in turn (Ok when none is left).
class Runner : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(_dir.isValid());
        ExternalDialog::SetMessageBox([this](QWidget*, QMessageBox::Icon icon, const QString& title,
                                             const QString& text, QMessageBox::StandardButtons buttons) {
            _boxes.emplace_back(icon, title.toStdString(), text.toStdString(), int(buttons));
            if (_answers.empty())
                return QMessageBox::Ok;
            const QMessageBox::StandardButton answer = _answers.front();
            _answers.erase(_answers.begin());
            return answer;
        });
    }
    void TearDown() override
    {
        delete _dialog;
        ExternalDialog::SetMessageBox(nullptr);
    }

    std::string Path(const char* name) const { return _dir.filePath(name).toStdString(); }

    // A script in the temporary directory; `body` runs under /bin/sh.
    std::string Script(const char* name, const std::string& body)
    {
        QFile file(_dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString("#!/bin/sh\n" + body + "\n"));
        file.close();
        file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
        return "/bin/sh " + Path(name);
    }

    static std::shared_ptr<CmdConfig> Cmd(const std::string& cmd, const std::string& description = "",
                                          bool nofail = false, bool nooutput = false)
    {
        auto command = std::make_shared<CmdConfig>();
        command->cmd = cmd;
        command->description = description;
        command->nofail = nofail;
        command->nooutput = nooutput;
        return command;
    }

    ExternalDialog& Start(std::vector<std::shared_ptr<CmdConfig>> cmds)
    {
        ButtonConfig button;
        button.caption = "Update";
        button.cmds = std::move(cmds);
        delete _dialog;
        _dialog = new ExternalDialog(nullptr, button, Defines());
        _dialog->show();
        _dialog->RunCmds();
        return *_dialog;
    }

    bool WaitForBoxes(size_t count)
    {
        return QTest::qWaitFor([&] { return _boxes.size() >= count; }, kTimeoutMs);
    }

    QString Output() const { return _dialog->findChild<ExternalTextEdit*>()->toPlainText(); }

    QTemporaryDir _dir;
    QPointer<ExternalDialog> _dialog;
    std::vector<Box> _boxes;
    std::vector<QMessageBox::StandardButton> _answers;
};

// The lines of the area written in `colour`, in order.
QStringList LinesIn(ExternalTextEdit& edit, const QColor& colour)
{
    QStringList lines;
    for (QTextBlock block = edit.document()->begin(); block.isValid(); block = block.next())
        if (!block.text().isEmpty() && ColourAt(edit, block.position()) == colour)
            lines << block.text();
    return lines;
}

TEST_F(Runner, SequenceRunsInOrderAndSucceeds)
{
    const std::string marker = Path("marker");
    ExternalDialog& dialog = Start({
        Cmd(Script("one.sh", "echo out-1; echo err-1 >&2; echo out-2; echo err-2 >&2; echo 1 > " + marker),
            "Step one"),
        Cmd(Script("two.sh", "echo out-3; cat " + marker), "Step two"),
    });
    EXPECT_EQ(dialog.windowTitle(), "Update -- Running...");
    EXPECT_EQ(dialog.size(), QSize(600, 400));
    ASSERT_TRUE(WaitForBoxes(1));
    EXPECT_EQ(_boxes, (std::vector<Box>{{QMessageBox::Information, "Update -- Finished", "Succeeded", QMessageBox::Ok}}));
    EXPECT_EQ(dialog.windowTitle(), "Update -- Finished");

    // Headings blue, output black, errors red, each stream in order; the two pipes race each other.
    auto* edit = dialog.findChild<ExternalTextEdit*>();
    EXPECT_EQ(LinesIn(*edit, Qt::blue), (QStringList{"*** Step one ***", "*** Step two ***"}));
    EXPECT_EQ(LinesIn(*edit, Qt::black), (QStringList{"out-1", "out-2", "out-3", "1"}));
    EXPECT_EQ(LinesIn(*edit, Qt::red), (QStringList{"err-1", "err-2"}));
    // All of a command's output comes before the next command's heading.
    const QString text = Output();
    EXPECT_EQ(text.count('\n'), 8) << text.toStdString();
    EXPECT_LT(std::max(text.indexOf("out-2"), text.indexOf("err-2")), text.indexOf("Step two"));

    dialog.RunCmds();  // back at the start: runs again
    ASSERT_TRUE(WaitForBoxes(2));
    EXPECT_EQ(std::get<1>(_boxes[1]), "Update -- Finished");
}

// How a sequence ends: a failure stops it, nofail goes on, nooutput keeps only the heading. A
// question is the text from its tenth character on, asked at once inside RunCmds; a process as the
// last step ends with Ok, a question with Close; cancelling ends the sequence and counts as success.
TEST_F(Runner, SequencesEndWithTheirBox)
{
    const auto ask = QMessageBox::Ok | QMessageBox::Cancel;
    const Box finished{QMessageBox::Information, "Update -- Finished", "Succeeded", QMessageBox::Ok};
    const struct {
        const char* what;
        std::vector<std::shared_ptr<CmdConfig>> cmds;
        std::vector<QMessageBox::StandardButton> answers;
        std::vector<Box> boxes;
        const char *title, *output;
    } rows[] = {
        {"failure", {Cmd(Script("fail.sh", "echo failing; exit 3"), "Erase flash"),
                     Cmd(Script("after.sh", "echo after"), "After")}, {},
         {{QMessageBox::Critical, "Update -- ERROR", "Error running command 'Erase flash'", QMessageBox::Close}},
         "Update -- ERROR", "*** Erase flash ***\nfailing\n"},
        {"nofail, nooutput", {Cmd(Script("mayfail.sh", "echo shown; exit 3"), "May fail", true),
                              Cmd(Script("quiet.sh", "echo hidden; echo hidden-too >&2"), "Quiet", false, true),
                              Cmd(Script("last.sh", "echo last"), "Last")}, {},
         {finished}, "Update -- Finished", "*** May fail ***\nshown\n*** Quiet ***\n*** Last ***\nlast\n"},
        {"confirmed", {Cmd("Confirm: Erase?"), Cmd("Confirm:Erase?"), Cmd(Script("go.sh", "echo went"), "Go")}, {},
         {{QMessageBox::Question, "Confirm", "Erase?", ask}, {QMessageBox::Question, "Confirm", "rase?", ask}, finished},
         "Update -- Finished", "*** Go ***\nwent\n"},
        {"question last", {Cmd(Script("first.sh", "true")), Cmd("Confirm: Reboot now?")}, {},
         {{QMessageBox::Question, "Confirm", "Reboot now?", ask},
          {QMessageBox::Information, "Update -- Finished", "Succeeded", QMessageBox::Close}},
         "Update -- Finished", "***  ***\n"},
        {"cancelled", {Cmd("Confirm: Really?"), Cmd(Script("after.sh", "echo after"))}, {QMessageBox::Cancel},
         {{QMessageBox::Question, "Confirm", "Really?", ask},
          {QMessageBox::Information, "Update -- Cancelled", "Update cancelled", QMessageBox::Close}},
         "Update -- Cancelled", ""},
        // With no finished signal the window stays as it was: only the heading tells.
        {"cannot start", {Cmd(Path("no-such-program") + " --flag", "Missing")}, {}, {}, "Update -- Running...",
         "*** Missing ***\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        _boxes.clear();
        _answers = row.answers;
        ExternalDialog& dialog = Start(row.cmds);
        EXPECT_TRUE(row.answers.empty() || _boxes.size() == row.boxes.size()) << "a question is asked at once";
        ASSERT_TRUE(WaitForBoxes(row.boxes.size()));
        // A command started in error would show its heading at once; one that cannot start ends so.
        auto* process = dialog.findChild<QProcess*>();
        EXPECT_TRUE(QTest::qWaitFor([&] { return process->state() == QProcess::NotRunning; }, kTimeoutMs));
        EXPECT_EQ(_boxes, row.boxes);
        EXPECT_EQ(dialog.windowTitle(), row.title);
        EXPECT_EQ(Output(), row.output);
    }
}

// A key typed in the output area reaches the command, which redraws its line in answer.
TEST_F(Runner, KeysReachTheCommandWhichRedrawsItsLine)
{
    Start({Cmd(Script("ask.sh", "printf 'press a key'; c=$(dd bs=1 count=1 2>/dev/null); printf '\\rgot %s\\n' \"$c\""),
               "Ask")});
    ASSERT_TRUE(QTest::qWaitFor([&] { return Output().endsWith("press a key"); }, kTimeoutMs));
    QTest::keyClick(_dialog->findChild<ExternalTextEdit*>(), Qt::Key_Y);
    ASSERT_TRUE(WaitForBoxes(1));
    EXPECT_EQ(std::get<1>(_boxes[0]), "Update -- Finished");
    EXPECT_EQ(Output(), "*** Ask ***\ngot y\n");
}

}  // namespace
