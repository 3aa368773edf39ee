#pragma once
// Editing a Halden's two zeros by hand.

#include <QDialog>

#include <string>

class DocHalden;
class QLineEdit;

/// The zeros DC0 and Pc0 of a Halden in one field each.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), CalUpdated() to
/// Connector::OnForceXMLUpdate(), Connector::GotXMLChanges() to OnXMLChanged().
class CalHaldenAdvancedDialog : public QDialog {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    CalHaldenAdvancedDialog(QWidget* parent, const std::string& name, DocHalden* doc);

signals:
    void SendXMLChanges();
    /// After an apply: asks that the document be read anew from the instrument.
    void CalUpdated();

public slots:
    /// Each field that reads as a float (QString::toFloat) sets its zero to the float's whole part,
    /// so counts beyond 2^24 keep only a float's precision; a field that doesn't read leaves its
    /// zero as it was. Sends what differs from the instrument, then CalUpdated().
    void OnApplyClicked();
    void OnRefreshClicked();
    void OnXMLChanged();

private:
    void _UpdateFromXML();
    void _ApplyToXML();

    DocHalden* _doc;
    QLineEdit* _dc0;
    QLineEdit* _pc0;
};
