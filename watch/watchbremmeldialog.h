#pragma once
// The watch window of a Bremmel data logger.

#include <map>

#include "watch/watchmodeldialog.h"

class ClockTolvanDialog;
class NetworkTolvanDialog;

/// The live table of the Bremmel's "DATA", "DATASTAT", "DATADIAG", "DATAGPS", "DATASONIC" and
/// "DATACH4". Each record refreshes only its own column: a burst of records with one time stamp
/// shows together, the next burst half a second later. Buttons: the USB storage commands,
/// configuration, factory, clock and network settings, and the log switch.
class WatchBremmelDialog : public WatchModelDialog {
    Q_OBJECT
public:
    WatchBremmelDialog(QWidget* parent, const std::string& name, const std::string& type);

    void GotConnectorHeader(Connector& connector, std::string record) override;
    void GotConnectorData(Connector& connector, std::string record) override;

public slots:
    void OnStartUSBLogging();
    void OnStopUSBLogging();
    void OnEjectUSB();
    void OnClockClicked();
    void OnNetworkClicked();

protected:
    GenericConfigDialog* _MakeConfigDialog() override;
    GenericConfigDialog* _MakeFactoryDialog() override;

private:
    std::map<std::string, int> _columns;  ///< record name to its column
    BurstThrottle _throttle;
    ClockTolvanDialog* _clock = nullptr;
    NetworkTolvanDialog* _network = nullptr;
};
