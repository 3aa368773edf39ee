#include "service/ratedialog.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>

#include "libskarn/configcommon.h"
#include "service/commands.h"

RateDialog::RateDialog(QWidget* parent, const std::string& name, ConfigRate* rate, const std::string& type)
    : ServiceDialog(parent), _rate(rate), _type(type), _rates(new QComboBox)
{
    setWindowTitle(QString::fromStdString("Output Rate: " + name));
    _rates->addItem("Poll", 0);
    for (int hz : _rate->rates())
        if (hz > 0)
            _rates->addItem(QString::number(hz) + " Hz", hz);

    auto* poll = new QPushButton("&Poll");
    auto* rate_row = new QHBoxLayout;
    rate_row->addWidget(_rates);
    rate_row->addWidget(poll);
    auto* form = new QFormLayout;
    form->addRow("Rate:", rate_row);

    auto* test = new QGroupBox("Test Data");
    auto* test_layout = new QHBoxLayout(test);
    auto* poll_test = new QPushButton("Po&ll");
    test_layout->addWidget(poll_test);
    test_layout->addStretch();

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(test);
    layout->addLayout(_ButtonRow({nullptr, _CloseButton()}));

    connect(_rates, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &RateDialog::OnRateChanged);
    connect(poll, &QPushButton::clicked, this, &RateDialog::OnPoll);
    connect(poll_test, &QPushButton::clicked, this, &RateDialog::OnPollTest);

    _UpdateFromXML();
}

void RateDialog::OnRateChanged(int)
{
    _ApplyToXML();
}

void RateDialog::OnPoll()
{
    emit SendRawXML(CommandLine(_type, "poll"));
}

void RateDialog::OnPollTest()
{
    emit SendRawXML(CommandLine(_type, "polltest"));
}

void RateDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void RateDialog::_UpdateFromXML()
{
    const int index = _rates->findData(_rate->get_rate());
    if (index < 0)
        return;  // a rate the list lacks: the choice stays as it is
    const QSignalBlocker blocker(_rates);
    _rates->setCurrentIndex(index);
}

void RateDialog::_ApplyToXML()
{
    const std::vector<int>& rates = _rate->rates();
    const auto found = std::find(rates.begin(), rates.end(), _rates->currentData().toInt());
    if (found == rates.end())
        return;
    _rate->set(int(found - rates.begin()));
    emit SendXMLChanges();
}
