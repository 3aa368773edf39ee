#pragma once
// The calibration panel of a Dravik: zeros and spans of both analysers and the sensors around
// them, the oxygen setting, and the history.

#include <QStringList>

#include <string>
#include <vector>

#include "service/calpanel.h"

class ConfigCalDravik;
class ConfigCalHistoryDravik;
class ConfigurableFloat;
class DocDravik;
class QLabel;
class QLineEdit;

/// The rows of a Dravik's history tree: the time in the local zone ("2026-01-02 10:00:00"), the
/// type, and the 21 values of each record (channels, cells, references, flows, chamber pressure,
/// oxygen); other children of the list are left out. In the order of the list.
std::vector<QStringList> CalDravikHistoryRows(ConfigCalHistoryDravik& history);

/// The calibration panel over the `cal` section and the history of a Dravik's document. A zero or
/// a span takes effect on the instrument at once; there is no commit and no rollback, and "Undo"
/// and "Redo" stand disabled for good. The panel draws itself again from the document at every
/// change, span gas and oxygen fields included, even while they are being typed in.
/// The owner makes the CalDravikAdvancedDialog.
class CalDravikDialog : public CalPanel {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the panel. `standalone` makes the panel a plain widget
    /// with a size grip.
    CalDravikDialog(QWidget* parent, const std::string& name, DocDravik* doc, bool standalone);

public slots:
    // Each sends its command; a span sends its gas field exactly as typed, before the command in
    // the same message.
    void OnCO2AZeroClicked();
    void OnCO2ASpan1Clicked();
    void OnCO2ASpan2Clicked();
    void OnCO2BZeroClicked();
    void OnCO2BSpan1Clicked();
    void OnCO2BSpan2Clicked();
    void OnH2OAZeroClicked();
    void OnH2OASpan1Clicked();
    void OnH2OASpan2Clicked();
    void OnH2OBZeroClicked();
    void OnH2OBSpan1Clicked();
    void OnH2OBSpan2Clicked();
    void OnChamberPZeroClicked();
    void OnTCellAZeroClicked();
    void OnTCellBZeroClicked();
    void OnSSAResetClicked();
    void OnSSBResetClicked();
    void OnFlowZeroClicked();
    void OnFlowAZeroClicked();
    void OnFlowBZeroClicked();
    /// Sends the oxygen field as the `oxygen` setting; no command.
    void OnOxygenApplyClicked();
    /// Placeholders: their buttons are never enabled.
    void OnUndoClicked();
    void OnRedoClicked();

private:
    using Leaf = ConfigurableFloat& (ConfigCalDravik::*)();
    /// A label that shows a prefix and a leaf's value.
    struct _Value {
        QLabel* label;
        QString prefix;
        Leaf leaf;
    };
    /// A field that shows a leaf's value with one decimal.
    struct _Field {
        QLineEdit* edit;
        Leaf leaf;
    };

    void _UpdateFromXML() override;
    /// Keeps the newest record of each kind; the tree stays empty until the instrument's answer
    /// comes back.
    void _ClearOldRecords() override;
    void _Command(const std::string& element);
    /// Span `n` (1 or 2) of channel `channel` (0 to 3: CO2A, CO2B, H2OA, H2OB) with its gas field.
    void _Span(int channel, int n);

    DocDravik* _doc;
    std::vector<_Value> _values;
    std::vector<_Field> _fields;  ///< the eight span gases, co2a 1 and 2 first; the oxygen last
};
