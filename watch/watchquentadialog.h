#pragma once
// The watch window of a Quenta gas console.

#include "watch/watchmodeldialog.h"

/// The live table of the Quenta's records: "DATA", "DATASTAT", "DATADIAG" and every record it
/// announces later, repainted at most every 0.5 s of data time. Buttons: the light source
/// toggle, "Config...", "Factory..." and the log switch.
class WatchQuentaDialog : public WatchModelDialog {
    Q_OBJECT
public:
    WatchQuentaDialog(QWidget* parent, const std::string& name, const std::string& type);

protected:
    GenericConfigDialog* _MakeConfigDialog() override;
    GenericConfigDialog* _MakeFactoryDialog() override;
};
