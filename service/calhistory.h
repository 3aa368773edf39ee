#pragma once
// What the calibration panels of all models share: the history tree and the confirmation of
// "Clear Old History...".

#include <QStringList>
#include <QTreeWidget>

#include <vector>

/// The history of a calibration panel, one row per record. The first column is a time stamp in
/// text, the second what was done, the rest values.
class CalHistoryTree : public QTreeWidget {
    Q_OBJECT
public:
    CalHistoryTree(const QStringList& columns, QWidget* parent);

    /// Replaces the rows with `rows`, one list of texts each. Columns 0 and 1 are aligned left,
    /// the others right; the rows are sorted by the text of column 0, oldest on top, and every
    /// column is fitted to its contents.
    void SetRows(const std::vector<QStringList>& rows);
};

/// Asks, under the title "Confirm Clear Old History", whether to clear old
/// history records; `text` is the question. True only when the user pressed "Clear".
bool ConfirmClearOldHistory(QWidget* parent, const QString& text);
