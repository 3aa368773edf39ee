#pragma once
// Runs the commands of a description file's button, one after the other, in a terminal-like
// window: live output, keys passed on to the command, questions, and one clear result at the end.

#include <QDialog>
#include <QMessageBox>
#include <QProcess>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "link/configdoc.h"

class ExternalTextEdit;
class QKeyEvent;

/// The runner's window; it deletes itself when closed. A command text has two special forms:
/// "Confirm: question" asks (Ok goes on, anything else cancels the sequence), and "cmd_..." is
/// a helper in the program directory that gets the defines as one line of JSON, then an empty
/// line, on its standard input. Any other text is run as a command line, quotes as a shell
/// would read them. Standard output is shown in black, standard error in red; a command with
/// `nooutput` shows only its heading. A non-zero exit ends the sequence with an error unless the
/// command has `nofail`. A command that cannot be started leaves the window as it is.
class ExternalDialog : public QDialog {
    Q_OBJECT
public:
    /// Shows a box and answers the button pressed: the question, the error and the result
    /// boxes all go through it. Tests replace it; null restores the real box.
    using MessageBoxFunction = std::function<QMessageBox::StandardButton(
        QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text,
        QMessageBox::StandardButtons buttons)>;
    static void SetMessageBox(MessageBoxFunction show);

    /// `button` gives the caption and the commands, with the defines already applied; `defines`
    /// gives "program_dir" and the JSON for the helpers.
    ExternalDialog(QWidget* parent, const ButtonConfig& button, const Defines& defines);

    /// Starts the sequence, unless it runs already or there are no commands.
    void RunCmds();

private slots:
    void OnFinished(int exit_code, QProcess::ExitStatus exit_status);
    void OnReadyReadStderr();
    void OnReadyReadStdout();
    void OnEditKeyPressed(QKeyEvent* event);

private:
    void RunCmd();
    void RunNextCmd();
    void StartCmd(std::string cmd, const std::string& description);
    /// Ends the sequence with "caption -- word" as title and a box saying `message`.
    void Finished(const QString& word, const QString& message, bool success);
    void SetTitle(const QString& word);
    bool CurrentHasNoOutput() const;

    std::string _caption;
    std::vector<std::shared_ptr<CmdConfig>> _cmds;
    unsigned _current = 0;  // 0 when idle
    ExternalTextEdit* _edit;
    QProcess* _process;
    std::string _quoted_program_dir;
    std::string _defines_json;
};
