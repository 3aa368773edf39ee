#include "service/clocktolvandialog.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <sstream>
#include <stdexcept>

#include "libskarn/configcommon.h"

void DateTimeEdit::focusInEvent(QFocusEvent* event)
{
    QDateTimeEdit::focusInEvent(event);
    emit GotFocus();
}

ClockTolvanDialog::ClockTolvanDialog(QWidget* parent, const std::string& name, ConfigCfgClock* clock)
    : ServiceDialog(parent), _clock(clock), _timer(new QTimer(this)), _ptp(new QButtonGroup(this))
{
    setWindowTitle(QString::fromStdString("Clock: " + name));
    _timer->setInterval(1000);

    auto* ptp_group = new QGroupBox("Precision Time Protocol");
    auto* ptp_layout = new QVBoxLayout(ptp_group);
    int index = 0;
    for (const char* label : {"Automatic", "Slave Only", "Preferred Clock"}) {
        auto* radio = new QRadioButton(label);
        radio->installEventFilter(this);
        _ptp->addButton(radio, index++);
        ptp_layout->addWidget(radio);
    }

    _zone = new QComboBox;
    _zone->installEventFilter(this);
    _time = new DateTimeEdit;
    _time->setDisplayFormat("yyyy-MM-dd hh:mm:ss");
    auto* form = new QFormLayout;
    form->addRow("Timezone:", _zone);
    form->addRow("Instrument Time:", _time);

    const _RefreshApply buttons = _RefreshApplyCloseRow();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(ptp_group);
    layout->addLayout(form);
    layout->addLayout(buttons.row);

    connect(_timer, &QTimer::timeout, this, &ClockTolvanDialog::OnTimeout);
    connect(_time, &DateTimeEdit::GotFocus, this, &ClockTolvanDialog::OnDateTimeFocus);
    connect(buttons.refresh, &QPushButton::clicked, this, &ClockTolvanDialog::OnRefresh);
    connect(buttons.apply, &QPushButton::clicked, this, &ClockTolvanDialog::OnApply);
    // The first radio button would take the focus on showing and stop PTP updates at once.
    buttons.refresh->setFocus();

    _UpdateFromXML();
}

void ClockTolvanDialog::OnApply()
{
    _ApplyToXML();
    _show_time = _show_zone = _show_ptp = true;
}

void ClockTolvanDialog::OnRefresh()
{
    _show_time = _show_zone = _show_ptp = true;
    _SendRefreshQuery();
}

void ClockTolvanDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void ClockTolvanDialog::OnTimeout()
{
    _SendRefreshQuery();
}

void ClockTolvanDialog::OnDateTimeFocus()
{
    _show_time = false;
}

void ClockTolvanDialog::OnTimezoneFocus()
{
    _show_zone = false;
}

void ClockTolvanDialog::OnPTPFocus()
{
    _show_ptp = false;
}

void ClockTolvanDialog::showEvent(QShowEvent* event)
{
    ServiceDialog::showEvent(event);
    _timer->start();
}

void ClockTolvanDialog::hideEvent(QHideEvent* event)
{
    _timer->stop();
    QDialog::hideEvent(event);
}

bool ClockTolvanDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        if (watched == _zone)
            OnTimezoneFocus();
        else
            OnPTPFocus();
    }
    return QDialog::eventFilter(watched, event);
}

void ClockTolvanDialog::_UpdateFromXML()
{
    _timer->stop();
    if (_zone->count() <= 1) {
        _zone->clear();
        for (const std::string& zone : _clock->Zone().choices())
            _zone->addItem(QString::fromStdString(zone));
        if (_zone->count() == 0)
            _zone->addItem("UTC");
    }
    _ShowInstrument();
    // Hidden, the dialog asks nothing.
    if (isVisible())
        _timer->start();
}

void ClockTolvanDialog::_ShowInstrument()
{
    if (_show_ptp) {
        if (QAbstractButton* radio = _ptp->button(_clock->Ptp().get()))
            radio->setChecked(true);
    }
    if (_show_zone)
        _zone->setCurrentText(QString::fromStdString(_clock->Zone().get_str()));
    if (_show_time) {
        try {
            _time->setDateTime(QDateTime::fromSecsSinceEpoch(_clock->TimeDate()));
        } catch (const std::runtime_error&) {
            // An instrument's date or time that doesn't read: the editor keeps what it shows.
        }
    }
}

void ClockTolvanDialog::_ApplyToXML()
{
    if (_ptp->checkedId() >= 0)
        _clock->Ptp().set(_ptp->checkedId());
    _clock->Zone().set_str(_zone->currentText().toStdString());
    _clock->TimeDate(std::time_t(_time->dateTime().toSecsSinceEpoch()));
    emit SendXMLChanges();
}

void ClockTolvanDialog::_SendRefreshQuery()
{
    std::ostringstream query;
    Configurable::set_compact(query, true);
    _clock->build_query(query);
    emit SendRawXML(query.str() + "\n");
}
