#pragma once
// The clock of an instrument: date and time, time zone, precision time role.

#include <QDateTimeEdit>

#include <string>

#include "service/servicedialog.h"

class ConfigCfgClock;
class QButtonGroup;
class QComboBox;
class QTimer;

/// A date and time editor that says when it gains the focus.
class DateTimeEdit : public QDateTimeEdit {
    Q_OBJECT
public:
    using QDateTimeEdit::QDateTimeEdit;

signals:
    void GotFocus();

protected:
    void focusInEvent(QFocusEvent* event) override;
};

/// The clock section of any model. While shown it asks the instrument for its clock every second,
/// so that the time runs on the screen. An area that the user starts to edit (time, zone or PTP)
/// stops following the instrument until Apply or Refresh.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged().
class ClockTolvanDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// `clock` is the connector's document's and outlives the dialog.
    ClockTolvanDialog(QWidget* parent, const std::string& name, ConfigCfgClock* clock);

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    /// Sends the PTP role, the zone and the time, and follows the instrument again.
    void OnApply();
    /// Follows the instrument again, asking it at once.
    void OnRefresh();
    void OnXMLChanged();
    void OnTimeout();
    void OnDateTimeFocus();
    void OnTimezoneFocus();
    void OnPTPFocus();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _UpdateFromXML();
    void _ApplyToXML();
    void _SendRefreshQuery();
    void _ShowInstrument();

    ConfigCfgClock* _clock;
    QTimer* _timer;
    QButtonGroup* _ptp;
    QComboBox* _zone;
    DateTimeEdit* _time;
    // Whether each area shows the instrument's value.
    bool _show_time = true;
    bool _show_zone = true;
    bool _show_ptp = true;
};
