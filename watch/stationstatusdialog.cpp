#include "watch/stationstatusdialog.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const QColor kStale(255, 170, 170);

LinkHealth::Reading read(const Connector& connector, const Redialer* redialer)
{
    LinkHealth::Reading reading;
    reading.socket = connector.IsConnected() ? LinkHealth::Socket::Connected
                     : connector.IsIdle()    ? LinkHealth::Socket::Idle
                                             : LinkHealth::Socket::Connecting;
    reading.counters = connector.Counters();
    reading.logging = connector.IsLogging() && connector.LogContinuous();
    reading.redial_in = redialer ? redialer->NextAttemptIn() : -1;
    return reading;
}

}  // namespace

StationStatusDialog::StationStatusDialog(QWidget* parent)
    : ServiceDialog(parent), _table(new QTableWidget(0, COLUMNS, this)),
      _auto_reconnect(new QCheckBox("Reconnect automatically", this)), _alert_after(new QSpinBox(this))
{
    setWindowTitle("Station Status");
    resize(1200, 300);
    _table->setHorizontalHeaderLabels(
        {"Name", "Model", "Address", "State", "", "Last Record", "Records/s", "Bad Lines", "Log File"});
    _table->verticalHeader()->hide();
    _table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    _table->setSelectionMode(QAbstractItemView::NoSelection);
    _table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    _table->horizontalHeader()->setSectionResizeMode(LOG_FILE, QHeaderView::Stretch);

    _alert_after->setRange(1, 24 * 3600);
    _alert_after->setValue(10);
    _alert_after->setSuffix(" s without records");
    connect(_auto_reconnect, &QCheckBox::toggled, this, &StationStatusDialog::OnAutoReconnectToggled);
    auto* close = new QPushButton("Close", this);
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto* controls = new QHBoxLayout;
    controls->addWidget(_auto_reconnect);
    controls->addSpacing(20);
    controls->addWidget(new QLabel("Alert after", this));
    controls->addWidget(_alert_after);
    controls->addStretch();
    controls->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_table);
    layout->addLayout(controls);

    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        _tray = new QSystemTrayIcon(style()->standardIcon(QStyle::SP_ComputerIcon), this);
        _tray->setToolTip("Sondar station status");
        _tray->show();
    }

    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &StationStatusDialog::OnRefresh);
    timer->start(1000);
    OnRefresh();
}

StationStatusDialog::~StationStatusDialog()
{
    for (auto& entry : _rows)
        _StopRedialing(entry.second);
}

void StationStatusDialog::OnRefresh()
{
    std::map<std::string, Row> rows;
    for (const std::shared_ptr<Connector>& connector : Connector::Registered()) {
        // A connector made anew under a known name starts a row afresh.
        auto known = _rows.find(connector->Host());
        if (known != _rows.end() && known->second.connector.lock() == connector) {
            rows.emplace(known->first, std::move(known->second));
            continue;
        }
        rows.emplace(connector->Host(), Row{connector, LinkHealth(LinkClock::now()), nullptr});
        connect(connector.get(), &Connector::Connected, this, &StationStatusDialog::_ShowRows);
        connect(connector.get(), &Connector::Disconnected, this, &StationStatusDialog::_ShowRows);
    }
    const bool same_hosts = rows.size() == _rows.size() &&
                            std::equal(rows.begin(), rows.end(), _rows.begin(),
                                       [](const auto& a, const auto& b) { return a.first == b.first; });
    _rows = std::move(rows);

    if (!same_hosts) {
        _table->setRowCount(int(_rows.size()));
        int index = 0;
        for (const auto& entry : _rows) {
            auto* button = new QPushButton("Reconnect", _table);
            button->setAutoDefault(false);
            const std::string host = entry.first;
            connect(button, &QPushButton::clicked, this, [this, host] { _Reconnect(host); });
            _table->setCellWidget(index++, RECONNECT, button);
        }
    }

    // A link that has been up is redialed whenever it is down, even if it went down before it
    // was taken up here.
    if (_auto_reconnect->isChecked()) {
        for (auto& entry : _rows) {
            Row& row = entry.second;
            const auto connector = row.connector.lock();
            if (!connector || row.redialer || connector->Counters().connections == 0)
                continue;
            const Connector::Target& target = connector->LastTarget();
            row.redialer = new Redialer(*connector, connector.get());
            row.redialer->Dial(target.address, target.scope, target.port);
        }
    }
    _ShowRows();
}

void StationStatusDialog::_ShowRows()
{
    const LinkClock::time_point now = LinkClock::now();
    _table->setUpdatesEnabled(false);
    int index = 0;
    for (auto& entry : _rows)
        _ShowRow(index++, entry.first, entry.second, now);
    _table->setUpdatesEnabled(true);
}

void StationStatusDialog::_ShowRow(int index, const std::string& host, Row& row, LinkClock::time_point now)
{
    const auto connector = row.connector.lock();
    if (!connector)
        return;  // gone: the next refresh drops the row
    const LinkHealth::Figures figures = row.health.Read(read(*connector, row.redialer), now, _alert_after->value());
    const LinkCounters& counters = connector->Counters();
    const Connector::Target& target = connector->LastTarget();

    QString log;
    if (connector->IsLogging()) {
        log = QString::fromStdString(connector->LogFileName()) + " (" +
              QLocale().formattedDataSize(qint64(counters.bytes_logged)) + ")";
        if (figures.log_stalled)
            log += " - not growing";
    }
    const QString texts[] = {
        QString::fromStdString(host),
        QString::fromStdString(connector->Model()),
        target.port ? QString::fromStdString(target.Text()) : QString(),
        QString::fromStdString(figures.state),
        QString(),  // the button's
        QString::fromStdString(figures.age),
        QString::number(figures.rate, 'f', 1),
        QString::number(counters.bad_lines),
        log,
    };
    for (int column = 0; column < COLUMNS; ++column) {
        QTableWidgetItem* item = _table->item(index, column);
        if (!item) {
            item = new QTableWidgetItem;
            _table->setItem(index, column, item);
        }
        item->setText(texts[column]);
        item->setBackground(figures.stale ? QBrush(kStale) : QBrush());
    }
    if (auto* button = _table->cellWidget(index, RECONNECT))
        button->setEnabled(target.port != 0 && connector->IsIdle());

    if (figures.alert && _tray)
        _tray->showMessage("Station Status",
                           QString("%1: no records for more than %2 s").arg(texts[NAME]).arg(_alert_after->value()),
                           QSystemTrayIcon::Warning);
}

void StationStatusDialog::_Reconnect(const std::string& host)
{
    auto found = _rows.find(host);
    if (found == _rows.end())
        return;
    const auto connector = found->second.connector.lock();
    if (!connector || !connector->IsIdle())
        return;
    const Connector::Target& target = connector->LastTarget();
    if (found->second.redialer)
        found->second.redialer->Dial(target.address, target.scope, target.port);
    else
        connector->Connect(target.address, target.scope, target.port);
    _ShowRows();
}

void StationStatusDialog::OnAutoReconnectToggled(bool on)
{
    if (on) {
        OnRefresh();
        return;
    }
    for (auto& entry : _rows)
        _StopRedialing(entry.second);
    _ShowRows();
}

void StationStatusDialog::_StopRedialing(Row& row)
{
    const auto connector = row.connector.lock();
    if (!connector || !row.redialer)
        return;
    delete row.redialer;
    connector->SetDialFailuresShown(true);
}
