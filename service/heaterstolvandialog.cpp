#include "service/heaterstolvandialog.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QDateTimeEdit>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include "libskarn/doctolvan.h"
#include "service/leaftext.h"

namespace {

constexpr int CONTROL_AUTO = 0, CONTROL_ON = 1;

QSpinBox* percent_box(int max)
{
    auto* box = new QSpinBox;
    box->setRange(0, max);
    return box;
}

QDateTimeEdit* time_edit()
{
    return StampEdit("hh:mm");
}

// A group box with the radio buttons Off, On, Auto in a row, then a form for its fields.
QGroupBox* mode_group(const QString& title, QButtonGroup* mode, QFormLayout*& form)
{
    auto* box = new QGroupBox(title);
    auto* layout = new QVBoxLayout(box);
    auto* radios = new QHBoxLayout;
    for (auto [label, index] : {std::pair{"Off", 2}, {"On", CONTROL_ON}, {"Auto", CONTROL_AUTO}}) {
        auto* radio = new QRadioButton(label);
        mode->addButton(radio, index);
        radios->addWidget(radio);
    }
    radios->addStretch();
    layout->addLayout(radios);
    form = new QFormLayout;
    layout->addLayout(form);
    return box;
}

void set_time(QDateTimeEdit* edit, const ConfigurableTimestamp& leaf)
{
    edit->setTime(TimeOfDay(leaf.get()));
}

}  // namespace

HeatersTolvanDialog::HeatersTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc)
    : ServiceDialog(parent), _doc(doc)
{
    setWindowTitle(QString::fromStdString("Mirror Control Panel: " + name));
    _top.mode = new QButtonGroup(this);
    _bottom.mode = new QButtonGroup(this);
    _spin.mode = new QButtonGroup(this);

    QFormLayout* form = nullptr;
    QGroupBox* top = mode_group("Top Heater Control", _top.mode, form);
    _top_deltat = new QDoubleSpinBox;
    _top_deltat->setRange(-5, 5);
    _top_deltat->setSingleStep(0.5);
    _top_deltat->setDecimals(1);
    _top_power = percent_box(100);
    _top_on = time_edit();
    _top_off = time_edit();
    form->addRow("C from ambient", _top_deltat);
    form->addRow("Max Power %:", _top_power);
    form->addRow("On Time:", _top_on);
    form->addRow("Off Time:", _top_off);
    _top.on_fields = {_top_power};
    _top.auto_fields = {_top_deltat, _top_power, _top_on, _top_off};

    QGroupBox* bottom = mode_group("Bottom Heater Control", _bottom.mode, form);
    _bottom_power = percent_box(100);
    _bottom_threshold = percent_box(100);
    _bottom_on = time_edit();
    _bottom_off = time_edit();
    form->addRow("Power %:", _bottom_power);
    form->addRow("Sig Thresh %:", _bottom_threshold);
    form->addRow("On Time:", _bottom_on);
    form->addRow("Off Time:", _bottom_off);
    _bottom.on_fields = {_bottom_power};
    _bottom.auto_fields = {_bottom_power, _bottom_threshold, _bottom_on, _bottom_off};

    QGroupBox* spin = mode_group("Bottom Spin Motor Control", _spin.mode, form);
    _spin_repeat = time_edit();
    _spin_on = time_edit();
    _spin_off = time_edit();
    _spin_duration = percent_box(300);
    _spin_threshold = percent_box(100);
    form->addRow("Repeat Time:", _spin_repeat);
    form->addRow("On Time:", _spin_on);
    form->addRow("Off Time:", _spin_off);
    form->addRow("Duration (secs):", _spin_duration);
    form->addRow("Sig Thresh %:", _spin_threshold);
    _spin.on_fields = {_spin_repeat, _spin_duration};
    _spin.auto_fields = {_spin_repeat, _spin_on, _spin_off, _spin_duration, _spin_threshold};

    const _RefreshApply buttons = _RefreshApplyCloseRow();
    _refresh = buttons.refresh;
    _apply = buttons.apply;

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(top);
    layout->addWidget(bottom);
    layout->addWidget(spin);
    layout->addLayout(buttons.row);

    connect(_top.mode, &QButtonGroup::idClicked, this, &HeatersTolvanDialog::OnTopRadioChanged);
    connect(_bottom.mode, &QButtonGroup::idClicked, this,
            &HeatersTolvanDialog::OnBottomRadioChanged);
    connect(_spin.mode, &QButtonGroup::idClicked, this, &HeatersTolvanDialog::OnSpinRadioChanged);
    for (QSpinBox* box : {_top_power, _bottom_power, _bottom_threshold, _spin_duration, _spin_threshold})
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &HeatersTolvanDialog::_EnableButtons);
    connect(_top_deltat, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &HeatersTolvanDialog::_EnableButtons);
    for (QDateTimeEdit* edit : {_top_on, _top_off, _bottom_on, _bottom_off, _spin_repeat, _spin_on, _spin_off})
        connect(edit, &QDateTimeEdit::timeChanged, this, &HeatersTolvanDialog::_EnableButtons);
    connect(_apply, &QPushButton::clicked, this, &HeatersTolvanDialog::OnApplyClicked);
    connect(_refresh, &QPushButton::clicked, this, &HeatersTolvanDialog::OnRefreshClicked);

    _UpdateFromXML();
}

void HeatersTolvanDialog::OnTopRadioChanged()
{
    _EnableFields(_top);
    _apply->setEnabled(true);
}

void HeatersTolvanDialog::OnBottomRadioChanged()
{
    _EnableFields(_bottom);
    _apply->setEnabled(true);
}

void HeatersTolvanDialog::OnSpinRadioChanged()
{
    _EnableFields(_spin);
    _apply->setEnabled(true);
}

void HeatersTolvanDialog::OnApplyClicked()
{
    _ApplyToXML();
    _apply->setEnabled(false);
}

void HeatersTolvanDialog::OnRefreshClicked()
{
    _UpdateFromXML();
}

void HeatersTolvanDialog::OnXMLChanged()
{
    ConfigCfg& cfg = _doc->Conf().Cfg();
    if (cfg.Heater().has_changed() || cfg.Spinmirror().has_changed())
        _EnableButtons();
}

void HeatersTolvanDialog::_EnableButtons()
{
    _apply->setEnabled(true);
    _refresh->setEnabled(true);
}

void HeatersTolvanDialog::_EnableFields(const Group& group)
{
    const int mode = group.mode->checkedId();
    for (QWidget* field : group.auto_fields)
        field->setEnabled(false);
    for (QWidget* field : mode == CONTROL_AUTO ? group.auto_fields
                          : mode == CONTROL_ON ? group.on_fields
                                               : std::vector<QWidget*>())
        field->setEnabled(true);
}

void HeatersTolvanDialog::_UpdateFromXML()
{
    ConfigHeater& heater = _doc->Conf().Cfg().Heater();
    ConfigSpinMirror& spin = _doc->Conf().Cfg().Spinmirror();
    {
        // Filling the fields is no edit of the user's.
        const QSignalBlocker blockers[] = {QSignalBlocker(_top_deltat),      QSignalBlocker(_top_power),
                                           QSignalBlocker(_top_on),          QSignalBlocker(_top_off),
                                           QSignalBlocker(_bottom_power),    QSignalBlocker(_bottom_threshold),
                                           QSignalBlocker(_bottom_on),       QSignalBlocker(_bottom_off),
                                           QSignalBlocker(_spin_repeat),     QSignalBlocker(_spin_on),
                                           QSignalBlocker(_spin_off),        QSignalBlocker(_spin_duration),
                                           QSignalBlocker(_spin_threshold)};
        _top.mode->button(heater.Top().Control().get())->setChecked(true);
        _top_deltat->setValue(heater.Top().Deltat().get());
        _top_power->setValue(int(heater.Top().Heaterpower().get()));
        set_time(_top_on, heater.Top().Ontime());
        set_time(_top_off, heater.Top().Offtime());
        _bottom.mode->button(heater.Bottom().Control().get())->setChecked(true);
        _bottom_power->setValue(int(heater.Bottom().Heaterpower().get()));
        _bottom_threshold->setValue(int(heater.Bottom().Signalstrengthlevel().get()));
        set_time(_bottom_on, heater.Bottom().Ontime());
        set_time(_bottom_off, heater.Bottom().Offtime());
        _spin.mode->button(spin.Control().get())->setChecked(true);
        set_time(_spin_repeat, spin.Repeatinterval());
        set_time(_spin_on, spin.Ontime());
        set_time(_spin_off, spin.Offtime());
        _spin_duration->setValue(int(spin.Duration().get()));
        _spin_threshold->setValue(int(spin.Signalstrengthlevel().get()));
    }
    for (const Group* group : {&_top, &_bottom, &_spin})
        _EnableFields(*group);
    _apply->setEnabled(false);
}

void HeatersTolvanDialog::_ApplyToXML()
{
    ConfigHeater& heater = _doc->Conf().Cfg().Heater();
    ConfigSpinMirror& spin = _doc->Conf().Cfg().Spinmirror();
    heater.Top().Control().set(_top.mode->checkedId());
    heater.Top().Deltat().set(float(_top_deltat->value()));
    heater.Top().Heaterpower().set(_top_power->value());
    heater.Top().Ontime().set(TimestampOfDay(_top_on->time()));
    heater.Top().Offtime().set(TimestampOfDay(_top_off->time()));
    heater.Bottom().Control().set(_bottom.mode->checkedId());
    heater.Bottom().Heaterpower().set(_bottom_power->value());
    heater.Bottom().Signalstrengthlevel().set(_bottom_threshold->value());
    heater.Bottom().Ontime().set(TimestampOfDay(_bottom_on->time()));
    heater.Bottom().Offtime().set(TimestampOfDay(_bottom_off->time()));
    spin.Control().set(_spin.mode->checkedId());
    spin.Repeatinterval().set(TimestampOfDay(_spin_repeat->time()));
    spin.Ontime().set(TimestampOfDay(_spin_on->time()));
    spin.Offtime().set(TimestampOfDay(_spin_off->time()));
    spin.Duration().set(_spin_duration->value());
    spin.Signalstrengthlevel().set(_spin_threshold->value());
    emit SendXMLChanges();
}
