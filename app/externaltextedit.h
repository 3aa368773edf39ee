#pragma once
// The terminal-like output area of the external command runner.

#include <QTextEdit>

class QByteArray;
class QColor;
class QKeyEvent;

/// Shows a command's output and passes the keys typed on instead of editing the text.
class ExternalTextEdit : public QTextEdit {
    Q_OBJECT
public:
    explicit ExternalTextEdit(QWidget* parent);

    /// Appends output at the end in `colour`, up to its first NUL byte. Bytes that begin with a
    /// carriage return first remove the last line, so that a command can redraw a progress
    /// line; a carriage return further inside gets no such treatment. Empty bytes do nothing.
    void AppendPlainText(const QByteArray& bytes, const QColor& colour);

signals:
    /// Every key pressed in the area; the text itself is left alone.
    void KeyPressed(QKeyEvent* event);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};
