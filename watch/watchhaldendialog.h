#pragma once
// The watch window of a Halden fluorometer.

#include "watch/watchmodeldialog.h"

class CalHaldenAdvancedDialog;
class CalHaldenDialog;
class FPGAHaldenDialog;
class RawDataDialog;

/// The live table of the Halden's "DATA", "DATASTAT", "DATADIAG" and "DATATEST", repainted at most
/// every 200 ms of the computer's clock: the fluorometer's time stamps may stand still during a
/// flash. Buttons: "Reboot", the flash commands, calibration, configuration, factory settings, the
/// I/O console, raw data capture and the log switch.
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
    /// The calibration panel; its "Advanced..." opens the zeros.
    void OnCalClicked();
    void OnCalAdvancedClicked();
    void OnRawCaptureClicked();

protected:
    GenericConfigDialog* _MakeConfigDialog() override;
    GenericConfigDialog* _MakeFactoryDialog() override;

private:
    ClockThrottle _clock;
    FPGAHaldenDialog* _fpga = nullptr;
    CalHaldenDialog* _cal = nullptr;
    CalHaldenAdvancedDialog* _cal_advanced = nullptr;
    RawDataDialog* _raw = nullptr;
};
