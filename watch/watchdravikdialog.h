#pragma once
// The watch window of a Dravik photosynthesis head.

#include "watch/watchmodeldialog.h"

class CalDravikAdvancedDialog;
class CalDravikDialog;
class GenericConfigDialog;
class MatchDialog;
class PlotWaveDialog;

/// The live table of the Dravik's records: "DATA", "DATASTAT", "DATADIAG" and every record it
/// announces later, repainted at most every 0.5 s of data time. Buttons: "Reboot", the light
/// source and power toggles, the cell waveforms, calibration, configuration, factory and output
/// settings, the match valve and the connector's log dialog.
class WatchDravikDialog : public WatchModelDialog {
    Q_OBJECT
public:
    WatchDravikDialog(QWidget* parent, const std::string& name, const std::string& type);

public slots:
    void OnRebootClicked();
    /// Powers the head on when the button reads "Pwr On" (any case), else off.
    void OnPowerClicked();
    /// The waveforms of cells A and B.
    void OnWaveClicked();
    /// The calibration panel; its "Advanced..." opens the coefficients.
    void OnCalClicked();
    void OnCalAdvancedClicked();
    /// Rate and averaging time of the output.
    void OnRateClicked();
    /// The match valve: straight, cross or toggled.
    void OnMatchClicked();
    /// The connector's log dialog; this window has no save dialog of its own.
    void OnLogClicked() override;

protected:
    GenericConfigDialog* _MakeConfigDialog() override;
    GenericConfigDialog* _MakeFactoryDialog() override;

private:
    PlotWaveDialog* _wave = nullptr;
    CalDravikDialog* _cal = nullptr;
    CalDravikAdvancedDialog* _cal_advanced = nullptr;
    GenericConfigDialog* _output = nullptr;
    MatchDialog* _match = nullptr;
};
