#pragma once
// The calibration panel of a Tolvan: zero, span, commit, rollback and the history.

#include <QStringList>

#include <string>
#include <vector>

#include "service/calpanel.h"

class ConfigCalHistory;
class DocTolvan;
class QLabel;
class QLineEdit;

/// The rows of a Tolvan's history tree: time stamp, type, zero and span of every record; other
/// children of the list are left out. In the order of the list.
std::vector<QStringList> CalTolvanHistoryRows(ConfigCalHistory& history);

/// The calibration panel over the `cal` section of a Tolvan's document. The instrument does the
/// calibration: the panel sends commands, and draws itself again from the document whenever the
/// section comes back changed. It keeps no state of its own, so every button is always enabled.
/// The owner makes the CalAdvancedDialog.
class CalTolvanDialog : public CalPanel {
    Q_OBJECT
public:
    /// `doc` is the connector's and outlives the panel. `standalone` makes the panel a plain widget
    /// with a size grip, for the calibration main window.
    CalTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc, bool standalone);

public slots:
    void OnCH4ZeroClicked();
    /// Sends the span gas exactly as typed, in the same message and before the span command.
    void OnCH4SpanClicked();
    void OnCommitClicked();
    void OnRollbackClicked();
    /// Escape: stand-alone, the panel is the whole window, so it closes as "Close" does.
    void reject() override;

private:
    void _UpdateFromXML() override;
    /// Keeps only the records of the last zero and the last span; the tree shows what the
    /// document holds once it is sent.
    void _ClearOldRecords() override;

    DocTolvan* _doc;
    bool _standalone;
    QLabel* _last_zero;
    QLabel* _last_span;
    QLineEdit* _span_gas;
};
