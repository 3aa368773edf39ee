#pragma once
// The network settings of a Tolvan, Morvik or Sarnel, and its reboot.

#include <string>

#include "service/servicedialog.h"

class ConfigCfgNetwork;
class QLabel;
class QLineEdit;
class QRadioButton;

/// The network section of any model: name, automatic or manual addressing and the manual
/// addresses. Changes take effect at the instrument's next reboot, which the dialog can ask for.
/// A Sarnel's addresses are shown but cannot be edited.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged().
class NetworkTolvanDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// `network` is the connector's document's and outlives the dialog; `type` is the connector's
    /// type word ("tolvan", "morvik", "sarnel", ...).
    NetworkTolvanDialog(QWidget* parent, const std::string& name, ConfigCfgNetwork* network, const std::string& type);

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    /// Sends name, mode and addresses. An address that doesn't read is reported and not sent.
    void OnApplyClicked();
    /// Asks the instrument to restart; a Sarnel is addressed as "morvik".
    void OnRebootClicked();
    void OnXMLChanged();

private:
    void _UpdateFromXML();
    void _ApplyToXML();
    void _UpdateEnabledState();

    ConfigCfgNetwork* _network;
    std::string _type;
    bool _read_only;
    QLabel* _current_name;
    QLabel* _current_network;
    QLineEdit* _name;
    QRadioButton* _automatic;
    QRadioButton* _manual;
    QLineEdit* _address;
    QLineEdit* _netmask;
    QLineEdit* _gateway;
};
