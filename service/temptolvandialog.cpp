#include "service/temptolvandialog.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include <utility>
#include <vector>

#include "libskarn/doctolvan.h"

namespace {

constexpr int COOLER_MANUAL = 1, COOLER_DAC = 2;
constexpr int BLOCK_ON = 1, BLOCK_DAC = 2;

// A group box of radio buttons, one row each, given as (label, choice index).
QGroupBox* radio_group(const QString& title, QButtonGroup* buttons,
                       const std::vector<std::pair<const char*, int>>& choices, QGridLayout*& grid)
{
    auto* box = new QGroupBox(title);
    grid = new QGridLayout(box);
    int row = 0;
    for (const auto& [label, index] : choices) {
        auto* radio = new QRadioButton(label);
        buttons->addButton(radio, index);
        grid->addWidget(radio, row++, 0);
    }
    return box;
}

// Each value goes out when it is complete: at Return, on leaving the field, or at an arrow's step;
// not at every key on the way to it.
template <class Box>
Box* applying_box()
{
    auto* box = new Box;
    box->setKeyboardTracking(false);
    return box;
}

QDoubleSpinBox* temperature_box(double max)
{
    auto* box = applying_box<QDoubleSpinBox>();
    box->setRange(0, max);
    box->setSingleStep(0.01);
    box->setDecimals(2);
    return box;
}

QSpinBox* dac_box()
{
    auto* box = applying_box<QSpinBox>();
    box->setRange(0, 65535);
    return box;
}

}  // namespace

TempTolvanDialog::TempTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc)
    : ServiceDialog(parent),
      _doc(doc),
      _cooler_mode(new QButtonGroup(this)),
      _block_mode(new QButtonGroup(this)),
      _range(new QButtonGroup(this)),
      _cooler_temp(temperature_box(48)),
      _cooler_dac(dac_box()),
      _block_temp(temperature_box(50)),
      _block_dac(dac_box())
{
    setWindowTitle(QString::fromStdString("Laser Temperature Control: " + name));

    QGridLayout* grid = nullptr;
    QGroupBox* cooler = radio_group("Cooler Temperature Control", _cooler_mode,
                                    {{"&Automatic", 0}, {"&Manual", COOLER_MANUAL}, {"&DAC Count", COOLER_DAC}}, grid);
    grid->addWidget(_cooler_temp, 1, 1);
    grid->addWidget(new QLabel("C"), 1, 2);
    grid->addWidget(_cooler_dac, 2, 1);
    grid->addWidget(new QLabel("(16-bit)"), 2, 2);

    QGroupBox* block = radio_group("Block Temperature Control", _block_mode,
                                   {{"&On", BLOCK_ON}, {"O&ff", 0}, {"DAC &Count", BLOCK_DAC}}, grid);
    grid->addWidget(_block_temp, 0, 1);
    grid->addWidget(new QLabel("C"), 0, 2);
    grid->addWidget(_block_dac, 2, 1);
    grid->addWidget(new QLabel("(16-bit)"), 2, 2);

    QGroupBox* range = radio_group("Block Temperature Startup Range", _range,
                                   {{"High Range (0...50C)", 1}, {"Low Range (-25...25C)", 0}}, grid);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(cooler);
    layout->addWidget(block);
    layout->addWidget(range);
    layout->addLayout(_ButtonRow({nullptr, _CloseButton()}));

    for (QButtonGroup* group : {_cooler_mode, _block_mode, _range})
        connect(group, &QButtonGroup::idClicked, this, &TempTolvanDialog::OnRadioClicked);
    connect(_cooler_temp, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &TempTolvanDialog::OnCoolerSpinboxChanged);
    connect(_cooler_dac, QOverload<int>::of(&QSpinBox::valueChanged), this, &TempTolvanDialog::OnCoolerDacSpinboxChanged);
    connect(_block_temp, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &TempTolvanDialog::OnBlockSpinboxChanged);
    connect(_block_dac, QOverload<int>::of(&QSpinBox::valueChanged), this, &TempTolvanDialog::OnBlockDacSpinboxChanged);

    _UpdateFromXML();
}

void TempTolvanDialog::OnRadioClicked()
{
    _ApplyToXML();
}

void TempTolvanDialog::OnCoolerSpinboxChanged()
{
    _SelectAndApply(_cooler_mode, COOLER_MANUAL);
}

void TempTolvanDialog::OnCoolerDacSpinboxChanged()
{
    _SelectAndApply(_cooler_mode, COOLER_DAC);
}

void TempTolvanDialog::OnBlockSpinboxChanged()
{
    _SelectAndApply(_block_mode, BLOCK_ON);
}

void TempTolvanDialog::OnBlockDacSpinboxChanged()
{
    _SelectAndApply(_block_mode, BLOCK_DAC);
}

void TempTolvanDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void TempTolvanDialog::_SelectAndApply(QButtonGroup* group, int id)
{
    if (!group->button(id)->isChecked())
        group->button(id)->setChecked(true);
    _ApplyToXML();
}

void TempTolvanDialog::_UpdateFromXML()
{
    ConfigLineLock& linelock = _doc->Conf().Cfg().Linelock();
    const QSignalBlocker b1(_cooler_temp), b2(_cooler_dac), b3(_block_temp), b4(_block_dac);
    _cooler_mode->button(linelock.Lasercooler().Control().get())->setChecked(true);
    _cooler_temp->setValue(linelock.Lasercooler().Temp().get());
    _cooler_dac->setValue(int(linelock.Lasercooler().Daccount().get()));
    _block_mode->button(linelock.Laserblock().Control().get())->setChecked(true);
    _block_temp->setValue(linelock.Laserblock().Temp().get());
    _block_dac->setValue(int(linelock.Laserblock().Daccount().get()));
    _range->button(_doc->Conf().Cfg().Temprange().get())->setChecked(true);
}

void TempTolvanDialog::_ApplyToXML()
{
    ConfigCfg& cfg = _doc->Conf().Cfg();
    ConfigLaserCooler& cooler = cfg.Linelock().Lasercooler();
    ConfigLaserBlock& block = cfg.Linelock().Laserblock();
    cooler.Control().set(_cooler_mode->checkedId());
    cooler.Temp().set(float(_cooler_temp->value()));
    cooler.Daccount().set(_cooler_dac->value() & 0xffff);
    block.Control().set(_block_mode->checkedId());
    block.Temp().set(float(_block_temp->value()));
    block.Daccount().set(_block_dac->value() & 0xffff);
    cfg.Temprange().set(_range->checkedId());
    emit SendXMLChanges();
}
