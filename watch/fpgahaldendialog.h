#pragma once
// The test console of the Halden's I/O logic.

#include <string>

#include "service/servicedialog.h"

class QComboBox;
class QPushButton;
class QTextEdit;
class QTimer;

/// The text in the editor goes to the instrument as plain lines on the link's socket, once or
/// repeated at the chosen timing, each time with a line "out" added unless the text has the word
/// in any case, so that the logic reports its outputs. The answers are the instrument's own.
class FPGAHaldenDialog : public ServiceDialog {
    Q_OBJECT
public:
    FPGAHaldenDialog(QWidget* parent, const std::string& name);

signals:
    /// Text for the socket, to go out as it stands.
    void SendRawText(std::string text);

public slots:
    /// "run once", "1 Hz", "10 Hz", "100 Hz"; an index out of range runs once.
    void OnTimingChanged(int index);
    /// Runs when stopped, stops when running; the button names what a press does.
    void OnRunStopClicked();
    /// Sends the editor's text; "run once" stops after it.
    void OnTimeout();
    /// Clears the logic: "\nclr\n".
    void OnClear();

private:
    void _DoRun();
    void _DoStop();

    QTextEdit* _text;
    QComboBox* _timing;
    QPushButton* _run;
    QTimer* _timer;
};
