#include "app/externaldialog.h"

#include <QKeyEvent>
#include <QVBoxLayout>

#include <iostream>
#include <sstream>

#include "app/externaltextedit.h"

namespace {

const char* const kConfirm = "Confirm:";
const char* const kHelper = "cmd_";
const int kKillWaitMs = 30000;

bool starts_with(const std::string& text, const char* prefix)
{
    return text.rfind(prefix, 0) == 0;
}

QMessageBox::StandardButton show_message_box(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                             const QString& text, QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, title, text, buttons, parent);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

ExternalDialog::MessageBoxFunction& message_box()
{
    static ExternalDialog::MessageBoxFunction show = show_message_box;
    return show;
}

}  // namespace

void ExternalDialog::SetMessageBox(MessageBoxFunction show)
{
    message_box() = show ? std::move(show) : show_message_box;
}

ExternalDialog::ExternalDialog(QWidget* parent, const ButtonConfig& button, const Defines& defines)
    : QDialog(parent),
      _caption(button.caption),
      _cmds(button.cmds),
      _edit(new ExternalTextEdit(this)),
      _process(new QProcess(this))
{
    const auto program_dir = defines.Map().find("program_dir");
    if (program_dir != defines.Map().end())
        _quoted_program_dir = "\"" + program_dir->second + "\"";
    std::ostringstream json;
    json << defines << '\n';
    _defines_json = json.str();

    resize(600, 400);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_edit);
    SetTitle("Starting...");

    connect(_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &ExternalDialog::OnFinished);
    connect(_process, &QProcess::readyReadStandardError, this, &ExternalDialog::OnReadyReadStderr);
    connect(_process, &QProcess::readyReadStandardOutput, this, &ExternalDialog::OnReadyReadStdout);
    connect(_edit, &ExternalTextEdit::KeyPressed, this, &ExternalDialog::OnEditKeyPressed);
    _edit->setFocus();
}

void ExternalDialog::RunCmds()
{
    if (_process->state() != QProcess::NotRunning || _cmds.empty() || _current != 0)
        return;
    SetTitle("Running...");
    RunCmd();
}

void ExternalDialog::RunCmd()
{
    if (_current >= _cmds.size() || !_cmds[_current])
        return;
    const CmdConfig& command = *_cmds[_current];
    if (!starts_with(command.cmd, kConfirm)) {
        StartCmd(command.cmd, command.description);
        return;
    }
    // The prefix and the one character behind it, normally a blank, are not part of the question.
    const std::string question = command.cmd.size() > 9 ? command.cmd.substr(9) : "";
    const QMessageBox::StandardButton answer =
        message_box()(this, QMessageBox::Question, "Confirm", QString::fromStdString(question),
                      QMessageBox::Ok | QMessageBox::Cancel);
    if (answer == QMessageBox::Ok)
        RunNextCmd();
    else
        Finished("Cancelled", "Update cancelled", true);
}

void ExternalDialog::RunNextCmd()
{
    ++_current;
    if (_current < _cmds.size())
        RunCmd();
    else
        Finished("Finished", "Succeeded", true);
}

void ExternalDialog::StartCmd(std::string cmd, const std::string& description)
{
    const bool helper = starts_with(cmd, kHelper);
    if (helper)
        cmd = _quoted_program_dir + cmd;
    if (_process->state() != QProcess::NotRunning) {
        _process->kill();
        _process->waitForFinished(kKillWaitMs);
    }
    std::cout << "Executing command: " << cmd << std::endl;
    _edit->AppendPlainText(QByteArray::fromStdString("*** " + description + " ***\n"), Qt::blue);

    // The command line is split the way QProcess reads a single command string, quotes included.
    QStringList arguments = QProcess::splitCommand(QString::fromStdString(cmd));
    const QString program = arguments.isEmpty() ? QString() : arguments.takeFirst();
    _process->start(program, arguments, QIODevice::ReadWrite);
    // Helpers read the defines from standard input; it stays open for the keys typed.
    if (helper)
        _process->write(QByteArray::fromStdString(_defines_json));
}

void ExternalDialog::Finished(const QString& word, const QString& message, bool success)
{
    SetTitle(word);
    message_box()(this, success ? QMessageBox::Information : QMessageBox::Critical, windowTitle(), message,
                  QMessageBox::Close);
    _current = 0;
}

void ExternalDialog::OnFinished(int exit_code, QProcess::ExitStatus /*exit_status*/)
{
    // A crash counts by its exit code like any other end.
    if (exit_code != 0 && !(_current < _cmds.size() && _cmds[_current]->nofail)) {
        SetTitle("ERROR");
        const std::string description = _current < _cmds.size() ? _cmds[_current]->description : "";
        message_box()(this, QMessageBox::Critical, windowTitle(),
                      QString::fromStdString("Error running command '" + description + "'"), QMessageBox::Close);
        _current = 0;
        return;
    }
    ++_current;
    if (_current < _cmds.size()) {
        RunCmd();
        return;
    }
    SetTitle("Finished");
    message_box()(this, QMessageBox::Information, windowTitle(), "Succeeded", QMessageBox::Ok);
    _current = 0;
}

bool ExternalDialog::CurrentHasNoOutput() const
{
    return _current < _cmds.size() && _cmds[_current] && _cmds[_current]->nooutput;
}

void ExternalDialog::OnReadyReadStdout()
{
    const QByteArray bytes = _process->readAllStandardOutput();
    if (!CurrentHasNoOutput())
        _edit->AppendPlainText(bytes, Qt::black);
}

void ExternalDialog::OnReadyReadStderr()
{
    const QByteArray bytes = _process->readAllStandardError();
    if (!CurrentHasNoOutput())
        _edit->AppendPlainText(bytes, Qt::red);
}

void ExternalDialog::OnEditKeyPressed(QKeyEvent* event)
{
    if (!event->text().isEmpty())
        _process->write(event->text().toUtf8());
}

void ExternalDialog::SetTitle(const QString& word)
{
    setWindowTitle(QString::fromStdString(_caption) + " -- " + word);
}
