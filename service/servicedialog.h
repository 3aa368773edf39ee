#pragma once
// The base of the dialogs that send to an instrument, and the rows of buttons at their feet.

#include <QDialog>

#include <initializer_list>

class QHBoxLayout;
class QPushButton;

/// A dialog in which no key sends what the user did not mean. None of its push buttons is a
/// default or an auto-default one: Return in a field presses nothing, nor does Return on a
/// focused button (Space does). Escape still closes the dialog.
class ServiceDialog : public QDialog {
    Q_OBJECT
public:
    using QDialog::QDialog;

protected:
    /// Takes back what Qt makes default on showing (a button box's first accept button).
    void showEvent(QShowEvent* event) override;

    /// `buttons` in a row for the foot of the dialog; a null entry stands for a stretch.
    static QHBoxLayout* _ButtonRow(std::initializer_list<QPushButton*> buttons);
    /// "Close", which closes the dialog.
    QPushButton* _CloseButton();

    struct _RefreshApply {
        QHBoxLayout* row;
        QPushButton* refresh;
        QPushButton* apply;
    };
    /// "Refresh", "Apply" and "Close" pushed to the right; the dialog joins the first two.
    _RefreshApply _RefreshApplyCloseRow();
};
