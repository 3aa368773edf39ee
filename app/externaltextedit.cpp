#include "app/externaltextedit.h"

#include <QColor>
#include <QKeyEvent>
#include <QTextCharFormat>
#include <QTextCursor>

ExternalTextEdit::ExternalTextEdit(QWidget* parent) : QTextEdit(parent) {}

void ExternalTextEdit::AppendPlainText(const QByteArray& bytes, const QColor& colour)
{
    if (bytes.isEmpty())
        return;
    QTextCursor cursor = textCursor();
    cursor.movePosition(QTextCursor::End);
    QByteArray text = bytes;
    if (text[0] == '\r') {
        cursor.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        text.remove(0, 1);
    }
    const int nul = text.indexOf('\0');
    if (nul >= 0)
        text.truncate(nul);
    QTextCharFormat format;
    format.setForeground(colour);
    cursor.insertText(QString::fromUtf8(text), format);
    cursor.movePosition(QTextCursor::End);
    setTextCursor(cursor);
}

void ExternalTextEdit::keyPressEvent(QKeyEvent* event)
{
    // What a plain widget does with a key, not what a text edit does: the output is not for editing.
    QWidget::keyPressEvent(event);
    emit KeyPressed(event);
}
