#pragma once
// The configuration window of a Morvik or Sarnel base unit, which the main panel opens in place of
// a watch window: the head it serves, and its clock and network settings.

#include <memory>
#include <string>

#include "service/servicedialog.h"

class ClockTolvanDialog;
class ConfigCfgClock;
class ConfigCfgNetwork;
class ConfigurableString;
class Connector;
class FactoryMorvikDialog;
class NetworkTolvanDialog;
class QLineEdit;

class ConfigMorvikDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// Finds or makes the connector of `name`; `type` is the type word ("morvik" or "sarnel").
    ConfigMorvikDialog(QWidget* parent, const std::string& name, const std::string& type);

    /// Dials the instrument; the title shows the address.
    void Connect(const std::string& address, int scope, int port);

    /// Document to form.
    void _UpdateFromXML();
    /// Form to document, then the changes go out.
    void _ApplyToXML();

public slots:
    void OnRefreshClicked();
    void OnApplyClicked();
    /// New values: the head is shown again unless the user is editing it.
    void OnXMLChanged();
    /// The serial number, for a Morvik; a Sarnel's is not set from here.
    void OnFactoryClicked();
    void OnClockClicked();
    void OnNetworkClicked();

private:
    void _SetTitle(const std::string& rest);
    ConfigCfgClock& _Clock();
    ConfigCfgNetwork& _Network();

    std::shared_ptr<Connector> _connector;
    const bool _morvik;          ///< a Morvik or Sarnel document, else a Tolvan's
    ConfigurableString* _head;   ///< null for a Tolvan, which has none
    QLineEdit* _head_edit;
    FactoryMorvikDialog* _factory = nullptr;
    ClockTolvanDialog* _clock = nullptr;
    NetworkTolvanDialog* _network = nullptr;
};
