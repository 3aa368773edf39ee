#pragma once
// The laser's cooler and block temperatures of a Tolvan.

#include <string>

#include "service/servicedialog.h"

class DocTolvan;
class QButtonGroup;
class QDoubleSpinBox;
class QSpinBox;

/// The cooler and block of the laser and the block's start-up range. There is no Apply: every
/// change goes out at once. Touching a value selects the mode it belongs to (a set point Manual or
/// On, a DAC count DAC Count).
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), Connector::GotXMLChanges() to
/// OnXMLChanged().
class TempTolvanDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    TempTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc);

signals:
    void SendXMLChanges();

public slots:
    void OnRadioClicked();
    void OnCoolerSpinboxChanged();
    void OnCoolerDacSpinboxChanged();
    void OnBlockSpinboxChanged();
    void OnBlockDacSpinboxChanged();
    void OnXMLChanged();

private:
    void _UpdateFromXML();
    void _ApplyToXML();
    /// Checks the radio button `id` of `group` unless it is, then applies.
    void _SelectAndApply(QButtonGroup* group, int id);

    DocTolvan* _doc;
    // Button ids are the choice indexes of the document.
    QButtonGroup* _cooler_mode;
    QButtonGroup* _block_mode;
    QButtonGroup* _range;
    QDoubleSpinBox* _cooler_temp;
    QSpinBox* _cooler_dac;
    QDoubleSpinBox* _block_temp;
    QSpinBox* _block_dac;
};
