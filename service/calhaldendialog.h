#pragma once
// The calibration panel of a Halden: the zeros of its two detector channels and the history.

#include <QStringList>

#include <string>
#include <vector>

#include "service/calpanel.h"

class ConfigCalHistoryHalden;
class DocHalden;
class QLabel;

/// The rows of a Halden's history tree: the time stamp as the document writes it, the type, and
/// the two zeros in whole counts; other children of the list are left out. In the order of the list.
std::vector<QStringList> CalHaldenHistoryRows(ConfigCalHistoryHalden& history);

/// The calibration panel over the `cal` section and the history of a Halden's document: two
/// zeros that take effect at once, no commit or rollback, "Undo" and "Redo" disabled for good.
/// The owner makes the CalHaldenAdvancedDialog.
class CalHaldenDialog : public CalPanel {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the panel. `standalone` makes the panel a plain widget
    /// with a size grip.
    CalHaldenDialog(QWidget* parent, const std::string& name, DocHalden* doc, bool standalone);

public slots:
    void OnDCZeroClicked();
    void OnPcZeroClicked();
    /// Placeholders: their buttons are never enabled.
    void OnUndoClicked();
    void OnRedoClicked();

private:
    void _UpdateFromXML() override;
    /// Keeps the newest record of each kind; the tree stays empty until the instrument's answer
    /// comes back.
    void _ClearOldRecords() override;

    DocHalden* _doc;
    QLabel* _dc0;
    QLabel* _pc0;
};
