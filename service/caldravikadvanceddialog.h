#pragma once
// Editing a Dravik's calibration coefficients by hand.

#include <string>
#include <vector>

#include "service/caleditor.h"

class ConfigCalDravik;
class ConfigurableFloat;
class DocDravik;
class QLineEdit;

/// Every coefficient of a Dravik's `cal` section that the panel shows, and the span gases, in one
/// field each, grouped by channel and sensor.
class CalDravikAdvancedDialog : public CalEditor {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    CalDravikAdvancedDialog(QWidget* parent, const std::string& name, DocDravik* doc);

private:
    using Leaf = ConfigurableFloat& (ConfigCalDravik::*)();
    struct _Field {
        QLineEdit* edit;
        Leaf leaf;
    };

    void _UpdateFromXML() override;
    /// Writes every field that reads as a finite number into its coefficient; other fields leave
    /// theirs as it was.
    void _ApplyToXML() override;

    DocDravik* _doc;
    std::vector<_Field> _fields;
};
