#pragma once
// The frame that the calibration panels of all models share: the window, the history tree under
// the model's own controls, the row of buttons at the foot, and "Clear Old History...".

#include <QStringList>

#include <string>

#include "service/servicedialog.h"

class CalHistoryTree;
class QLayout;

/// A calibration panel. The model's panel lays out its controls, hands them to _Lay() with the two
/// buttons that lead the foot row, and draws itself in _UpdateFromXML().
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged(), and OnAdvancedClicked()
/// to the owner, who makes the model's advanced dialog.
class CalPanel : public ServiceDialog {
    Q_OBJECT
public:
    /// `standalone` makes the panel a plain widget with a size grip. `clear_question` is what
    /// "Clear Old History..." asks before it clears.
    CalPanel(QWidget* parent, const std::string& name, bool standalone, QString clear_question);

signals:
    void OnAdvancedClicked();
    void SendXMLChanges();
    void SendRawXML(std::string text);
    /// "Close" was pressed (the panel also hides itself).
    void OnCloseClicked();

public slots:
    /// After the user confirms, empties the tree, clears the old records in the document and sends
    /// it.
    void OnClearHistoryClicked();
    void OnXMLChanged();

protected:
    /// Stacks `controls`, the "History:" row with "Clear Old History...", the tree with `columns`
    /// (stretched by `history_stretch`), and the foot row: `first`, `second`, "Advanced...", and
    /// "Close" at the right.
    void _Lay(QLayout* controls, const QStringList& columns, int history_stretch, QPushButton* first,
              QPushButton* second);
    /// A button that stands disabled for good.
    static QPushButton* _Placeholder(const char* text);

    virtual void _UpdateFromXML() = 0;
    /// Keeps the newest records in the document and drops the rest.
    virtual void _ClearOldRecords() = 0;

    CalHistoryTree* _history = nullptr;

private:
    QString _clear_question;
};
