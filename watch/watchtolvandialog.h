#pragma once
// The watch window of a Tolvan (and, through the same class, a Morvik).

#include "watch/watchdialog.h"

class PlotWaveDialog;

/// The live table of every record a Tolvan streams ("DATA", "DATASTAT", "DATADIAG",
/// "DATACLOCKSYNC", "DATATEST"), repainted at each "DATASTAT": the other records show the latest
/// the connector holds. Below it the buttons of the instrument's tool windows, each made at its
/// first use and kept for the life of this window, the log switch and "Show Clock Sync".
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
    /// Turns the instrument's clock-sync records on (2, checked) or off.
    void OnDataClockSyncChanged(int state);

private:
    PlotWaveDialog* _OpenWaveforms(PlotWaveDialog* dialog, const char* reference, const char* sample,
                                   const QString& title);

    PlotWaveDialog* _wave = nullptr;
    PlotWaveDialog* _dc = nullptr;
};
