#pragma once
// The calibration panel of a Halden: the zeros of its two detector channels and the history.

#include <QDialog>
#include <QStringList>

#include <string>
#include <vector>

class CalHistoryTree;
class ConfigCalHistoryHalden;
class DocHalden;
class QLabel;

/// The rows of a Halden's history tree: the time stamp as the document writes it, the type, and
/// the two zeros in whole counts; other children of the list are left out. In the order of the list.
std::vector<QStringList> CalHaldenHistoryRows(ConfigCalHistoryHalden& history);

/// The calibration panel over the `cal` section and the history of a Halden's document: two
/// zeros that take effect at once, no commit or rollback, "Undo" and "Redo" disabled for good.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged(), and OnAdvancedClicked()
/// to the owner, who makes the CalHaldenAdvancedDialog.
class CalHaldenDialog : public QDialog {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the panel. `standalone` makes the panel a plain widget
    /// with a size grip.
    CalHaldenDialog(QWidget* parent, const std::string& name, DocHalden* doc, bool standalone);

signals:
    void OnAdvancedClicked();
    void SendXMLChanges();
    void SendRawXML(std::string text);
    /// "Close" was pressed (the panel also hides itself).
    void OnCloseClicked();

public slots:
    void OnDCZeroClicked();
    void OnPcZeroClicked();
    /// Placeholders: their buttons are never enabled.
    void OnUndoClicked();
    void OnRedoClicked();
    /// After the user confirms, keeps the newest record of each kind and sends the history; the
    /// tree stays empty until the instrument's answer comes back.
    void OnClearHistoryClicked();
    void OnXMLChanged();

private:
    void _UpdateFromXML();

    DocHalden* _doc;
    QLabel* _dc0;
    QLabel* _pc0;
    CalHistoryTree* _history;
};
