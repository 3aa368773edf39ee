#pragma once
// The mirror heaters and the spin motor of a Tolvan.

#include <string>

#include "service/servicedialog.h"
#include <vector>

class DocTolvan;
class QButtonGroup;
class QDateTimeEdit;
class QDoubleSpinBox;
class QPushButton;
class QSpinBox;

/// The top heater, the bottom heater and the spin motor, each Off, On or Auto with its own
/// fields. Edits are kept until "Apply" sends them or "Refresh" drops them: a change that
/// arrives from the instrument only enables the two buttons.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), Connector::GotXMLChanges() to
/// OnXMLChanged().
class HeatersTolvanDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    HeatersTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc);

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    void OnTopRadioChanged();
    void OnBottomRadioChanged();
    void OnSpinRadioChanged();
    void OnApplyClicked();
    void OnRefreshClicked();
    void OnXMLChanged();

private:
    /// One group: its mode buttons (ids are choice indexes) and the fields that On and Auto use.
    struct Group {
        QButtonGroup* mode;
        std::vector<QWidget*> on_fields;
        std::vector<QWidget*> auto_fields;
    };

    void _UpdateFromXML();
    void _ApplyToXML();
    void _EnableButtons();
    void _EnableFields(const Group& group);

    DocTolvan* _doc;
    Group _top, _bottom, _spin;
    QDoubleSpinBox* _top_deltat;
    QSpinBox* _top_power;
    QDateTimeEdit* _top_on;
    QDateTimeEdit* _top_off;
    QSpinBox* _bottom_power;
    QSpinBox* _bottom_threshold;
    QDateTimeEdit* _bottom_on;
    QDateTimeEdit* _bottom_off;
    QDateTimeEdit* _spin_repeat;
    QDateTimeEdit* _spin_on;
    QDateTimeEdit* _spin_off;
    QSpinBox* _spin_duration;
    QSpinBox* _spin_threshold;
    QPushButton* _apply;
    QPushButton* _refresh;
};
