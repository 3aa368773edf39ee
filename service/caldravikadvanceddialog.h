#pragma once
// Editing a Dravik's calibration coefficients by hand.

#include <QDialog>

#include <string>
#include <vector>

class ConfigCalDravik;
class ConfigurableFloat;
class DocDravik;
class QLineEdit;

/// Every coefficient of a Dravik's `cal` section that the panel shows, and the span gases, in one
/// field each, grouped by channel and sensor.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), CalUpdated() to
/// Connector::OnForceXMLUpdate(), Connector::GotXMLChanges() to OnXMLChanged().
class CalDravikAdvancedDialog : public QDialog {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    CalDravikAdvancedDialog(QWidget* parent, const std::string& name, DocDravik* doc);

signals:
    void SendXMLChanges();
    /// After an apply: asks that the document be read anew from the instrument.
    void CalUpdated();

public slots:
    /// Writes every field that reads as a number (QString::toFloat) into its coefficient; other
    /// fields leave theirs as it was. Sends what differs from the instrument, then CalUpdated().
    void OnApplyClicked();
    void OnRefreshClicked();
    void OnXMLChanged();

private:
    using Leaf = ConfigurableFloat& (ConfigCalDravik::*)();
    struct _Field {
        QLineEdit* edit;
        Leaf leaf;
    };

    void _UpdateFromXML();
    void _ApplyToXML();

    DocDravik* _doc;
    std::vector<_Field> _fields;
};
