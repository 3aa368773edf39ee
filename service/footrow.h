#pragma once
// The row of buttons at the foot of a dialog that edits a section of the document.

class QDialog;
class QHBoxLayout;
class QPushButton;

/// "Refresh", "Apply" and "Close", pushed to the right of `layout`. "Close" already closes the
/// dialog; the owner joins the other two.
struct FootRow {
    QHBoxLayout* layout;
    QPushButton* refresh;
    QPushButton* apply;
    QPushButton* close;
};

/// Makes the row for `dialog`.
FootRow RefreshApplyCloseRow(QDialog* dialog);
