#pragma once
// What the advanced calibration dialogs of all models share: the title, the foot row, and the way
// an apply goes out.

#include <string>

#include "service/servicedialog.h"

class QLayout;

/// A dialog that edits calibration coefficients by hand. The model's dialog lays out its fields
/// over _Foot(), fills them in _UpdateFromXML() and writes them back in _ApplyToXML().
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), CalUpdated() to
/// Connector::OnForceXMLUpdate(), Connector::GotXMLChanges() to OnXMLChanged().
class CalEditor : public ServiceDialog {
    Q_OBJECT
public:
    CalEditor(QWidget* parent, const std::string& name);

signals:
    void SendXMLChanges();
    /// After an apply: asks that the document be read anew from the instrument.
    void CalUpdated();

public slots:
    /// Writes the fields into the document, sends what differs from the instrument, then emits
    /// CalUpdated().
    void OnApplyClicked();
    void OnRefreshClicked();
    void OnXMLChanged();

protected:
    /// "Refresh", "Apply" and "Close", joined, for the foot of the dialog.
    QLayout* _Foot();

    virtual void _UpdateFromXML() = 0;
    virtual void _ApplyToXML() = 0;
};
