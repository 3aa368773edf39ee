#pragma once
// The watch window of a Halden fluorometer.

#include "watch/watchmodeldialog.h"

class FPGAHaldenDialog;

/// The live table of the Halden's "DATA", "DATASTAT", "DATADIAG" and "DATATEST", repainted at most
/// every 200 ms of the computer's clock: the fluorometer's time stamps may stand still during a
/// flash. Buttons: "Reboot", the flash commands, configuration, factory settings, the I/O
/// console and the log switch.
class WatchHaldenDialog : public WatchModelDialog {
    Q_OBJECT
public:
    WatchHaldenDialog(QWidget* parent, const std::string& name, const std::string& type);

    void GotConnectorData(Connector& connector, std::string record) override;

public slots:
    void OnRebootClicked();
    void OnRectClicked();
    void OnMPFClicked();
    void OnInductionClicked();
    void OnDarkClicked();
    void OnBreakClicked();
    void OnResetClicked();
    void OnFPGAClicked();

protected:
    GenericConfigDialog* _MakeConfigDialog() override;
    GenericConfigDialog* _MakeFactoryDialog() override;

private:
    ClockThrottle _clock;
    FPGAHaldenDialog* _fpga = nullptr;
};
