#pragma once
// Editing a Halden's two zeros by hand.

#include <string>

#include "service/caleditor.h"

class DocHalden;
class QLineEdit;

/// The zeros DC0 and Pc0 of a Halden in one field each.
class CalHaldenAdvancedDialog : public CalEditor {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    CalHaldenAdvancedDialog(QWidget* parent, const std::string& name, DocHalden* doc);

private:
    void _UpdateFromXML() override;
    /// Each field that reads as a finite float sets its zero to the float's whole part,
    /// so counts beyond 2^24 keep only a float's precision; a field that doesn't read leaves its
    /// zero as it was.
    void _ApplyToXML() override;

    DocHalden* _doc;
    QLineEdit* _dc0;
    QLineEdit* _pc0;
};
