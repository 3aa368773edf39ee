#pragma once
// Editing a Tolvan's calibration coefficients and times by hand.

#include <string>

#include "service/caleditor.h"

class DocTolvan;
class QDateTimeEdit;
class QLineEdit;

/// Zero, span, span gas and the times of the last zero and span, edited by hand.
class CalAdvancedDialog : public CalEditor {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the dialog.
    CalAdvancedDialog(QWidget* parent, const std::string& name, DocTolvan* doc);

public slots:
    /// The zero time becomes the present moment in UTC.
    void OnCH4ZeroNow();
    void OnCH4SpanNow();

private:
    void _UpdateFromXML() override;
    /// A number that doesn't read leaves its value as it was.
    void _ApplyToXML() override;

    DocTolvan* _doc;
    QLineEdit* _zero;
    QDateTimeEdit* _zero_time;
    QLineEdit* _span;
    QLineEdit* _span_gas;
    QDateTimeEdit* _span_time;
};
