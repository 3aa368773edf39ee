#pragma once
// One place that tells the truth about every instrument link, and brings lost ones back.

#include <QPointer>

#include <map>
#include <memory>
#include <string>

#include "link/connector.h"
#include "link/linkhealth.h"
#include "link/redialer.h"
#include "service/servicedialog.h"

class QCheckBox;
class QPushButton;
class QSpinBox;
class QSystemTrayIcon;
class QTableWidget;

/// "Station Status": one row per instrument that has a connector, in name order: name, model,
/// address, state, age of the last record, records per second over the last 10 s, lines dropped
/// for a bad checksum, and the log file with its size, marked when it stops growing. The rows are
/// read from the connectors' counters once a second, and at once when a link comes up or goes down.
///
/// "Reconnect" dials a row's last target again. "Reconnect automatically" (off at first) redials,
/// at a capped back-off, every link that has been up and goes down. A row whose last record is
/// older than "Alert after" turns red, and the system tray, where there is one, says so once per
/// outage. The window holds no connector: a connector goes when its windows and the registry let
/// it, and its row goes with it.
class StationStatusDialog : public ServiceDialog {
    Q_OBJECT

public:
    /// The columns of the table.
    enum Column { NAME, MODEL, ADDRESS, STATE, RECONNECT, AGE, RATE, BAD_LINES, LOG_FILE, COLUMNS };

    explicit StationStatusDialog(QWidget* parent = nullptr);
    /// Redialing stops with the window.
    ~StationStatusDialog() override;

public slots:
    /// Takes up new connectors, lets gone ones go, and shows every row.
    void OnRefresh();
    void OnAutoReconnectToggled(bool on);

private:
    struct Row {
        std::weak_ptr<Connector> connector;
        LinkHealth health;
        QPointer<Redialer> redialer;  // a child of the connector, so it cannot outlive it
    };

    void _ShowRows();
    void _ShowRow(int index, const std::string& host, Row& row, LinkClock::time_point now);
    void _Reconnect(const std::string& host);
    void _StopRedialing(Row& row);

    std::map<std::string, Row> _rows;
    QTableWidget* _table;
    QCheckBox* _auto_reconnect;
    QSpinBox* _alert_after;
    QSystemTrayIcon* _tray = nullptr;
};
