#pragma once
// The watch window of a Tolvan (and, through the same class, a Morvik).

#include "watch/watchdialog.h"

class CalAdvancedDialog;
class CalTolvanDialog;
class ClockTolvanDialog;
class FactoryTolvanDialog;
class HeatersTolvanDialog;
class NetworkTolvanDialog;
class PlotWaveDialog;
class RateDialog;
class TempTolvanDialog;
class WideTolvanDialog;

/// The live table of every record a Tolvan streams ("DATA", "DATASTAT", "DATADIAG",
/// "DATACLOCKSYNC", "DATATEST"), repainted at each "DATASTAT": the other records show the latest
/// the connector holds. Below it the buttons of the instrument's tool windows, each made at its
/// first use and kept for the life of this window, the log switch and "Show Clock Sync". Each
/// tool window edits the connector's document and sends through the connector; on a Morvik or
/// Sarnel only the clock and the network have a window.
class WatchTolvanDialog : public WatchDialog {
    Q_OBJECT
public:
    /// Finds or makes the connector of `name`; `type` is the type word ("tolvan").
    WatchTolvanDialog(QWidget* parent, const std::string& name, const std::string& type);

    /// Any "DATASTAT" refreshes every value column.
    void GotConnectorData(Connector& connector, std::string record) override;

public slots:
    /// The reference and sample waveforms.
    void OnWaveClicked();
    /// The same as DC waveforms.
    void OnDCClicked();
    /// The wide spectrum scan; only a Tolvan has the laser for it.
    void OnWideClicked();
    /// Turns the instrument's clock-sync records on (2, checked) or off.
    void OnDataClockSyncChanged(int state);
    /// Each shows its tool window, made at the first call.
    void OnTClicked();
    void OnCalClicked();
    /// From the calibration panel's "Advanced...".
    void OnCalAdvancedClicked();
    void OnFactoryClicked();
    void OnHeatersClicked();
    /// The clock window, which asks the instrument for its clock at once.
    void OnClockClicked();
    void OnNetworkClicked();
    void OnRateClicked();

private:
    void _OpenWaveforms(PlotWaveDialog*& dialog, const char* reference, const char* sample, const QString& title);
    /// The connector's model is a Morvik or Sarnel.
    bool _IsMorvik() const;

    PlotWaveDialog* _wave = nullptr;
    PlotWaveDialog* _dc = nullptr;
    TempTolvanDialog* _temp = nullptr;
    CalTolvanDialog* _cal = nullptr;
    CalAdvancedDialog* _cal_advanced = nullptr;
    FactoryTolvanDialog* _factory = nullptr;
    HeatersTolvanDialog* _heaters = nullptr;
    ClockTolvanDialog* _clock = nullptr;
    NetworkTolvanDialog* _network = nullptr;
    RateDialog* _rate = nullptr;
    WideTolvanDialog* _wide = nullptr;
};
