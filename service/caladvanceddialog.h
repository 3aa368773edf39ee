#pragma once
// Editing a Tolvan's calibration coefficients and times by hand.

#include <QDialog>

#include <string>

class DocTolvan;
class QDateTimeEdit;
class QLineEdit;

/// Zero, span, span gas and the times of the last zero and span, edited by hand.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), CalUpdated() to
/// Connector::OnForceXMLUpdate(), Connector::GotXMLChanges() to OnXMLChanged().
class CalAdvancedDialog : public QDialog {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    CalAdvancedDialog(QWidget* parent, const std::string& name, DocTolvan* doc);

signals:
    void SendXMLChanges();
    /// After an apply: asks that every window draws itself again from the document.
    void CalUpdated();

public slots:
    /// Writes the fields into the document (a number that doesn't read leaves its value as it
    /// was), sends what differs from the instrument, then emits CalUpdated().
    void OnApplyClicked();
    void OnRefreshClicked();
    /// The zero time becomes the present moment in UTC.
    void OnCH4ZeroNow();
    void OnCH4SpanNow();
    void OnXMLChanged();

private:
    void _UpdateFromXML();
    void _ApplyToXML();

    DocTolvan* _doc;
    QLineEdit* _zero;
    QDateTimeEdit* _zero_time;
    QLineEdit* _span;
    QLineEdit* _span_gas;
    QDateTimeEdit* _span_time;
};
