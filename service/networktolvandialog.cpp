#include "service/networktolvandialog.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>

#include <stdexcept>
#include <vector>

#include "libskarn/configcommon.h"
#include "service/commands.h"

namespace {

constexpr int MANUAL = 1;

QString presentation(const ConfigIPAddress& address)
{
    return QString::fromStdString(address.get().Presentation());
}

}  // namespace

NetworkTolvanDialog::NetworkTolvanDialog(QWidget* parent, const std::string& name, ConfigCfgNetwork* network,
                                         const std::string& type)
    : ServiceDialog(parent), _network(network), _type(type), _read_only(type == "sarnel")
{
    setWindowTitle(QString::fromStdString("Network Settings: " + name));

    auto* current = new QGroupBox("Current Settings");
    auto* current_form = new QFormLayout(current);
    _current_name = new QLabel;
    _current_network = new QLabel;
    current_form->addRow("Name:", _current_name);
    current_form->addRow("Network:", _current_network);

    auto* settings = new QGroupBox("Settings");
    auto* form = new QFormLayout(settings);
    _name = new QLineEdit;
    form->addRow("Name:", _name);
    _automatic = new QRadioButton("Automatic");
    _manual = new QRadioButton("Manual");
    auto* mode = new QHBoxLayout;
    mode->addWidget(_automatic);
    mode->addWidget(_manual);
    mode->addStretch();
    form->addRow(mode);
    _address = new QLineEdit;
    _netmask = new QLineEdit;
    _gateway = new QLineEdit;
    form->addRow("Address:", _address);
    form->addRow("Netmask:", _netmask);
    form->addRow("Gateway:", _gateway);

    auto* apply = new QPushButton("Apply");
    auto* reboot = new QPushButton("Reboot");

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(current);
    layout->addWidget(settings);
    layout->addWidget(new QLabel("Network changes will take affect after the next reboot."));
    layout->addLayout(_ButtonRow({apply, _CloseButton(), nullptr, reboot}));  // the reboot apart

    connect(_manual, &QRadioButton::toggled, this, &NetworkTolvanDialog::_UpdateEnabledState);
    connect(apply, &QPushButton::clicked, this, &NetworkTolvanDialog::OnApplyClicked);
    connect(reboot, &QPushButton::clicked, this, &NetworkTolvanDialog::OnRebootClicked);

    _UpdateFromXML();
}

void NetworkTolvanDialog::OnApplyClicked()
{
    _ApplyToXML();
}

void NetworkTolvanDialog::OnRebootClicked()
{
    emit SendRawXML(RebootLine(_type));
}

void NetworkTolvanDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void NetworkTolvanDialog::_UpdateFromXML()
{
    const bool manual = _network->Configuration().get() == MANUAL;
    _current_name->setText(QString::fromStdString(_network->Name().get()));
    _current_network->setText(manual ? presentation(_network->Ipaddress()) + " / " + presentation(_network->Netmask()) +
                                           ", gateway " + presentation(_network->Gateway())
                                     : QString("Automatic"));
    _name->setText(QString::fromStdString(_network->Name().get()));
    (manual ? _manual : _automatic)->setChecked(true);
    _address->setText(presentation(_network->Ipaddress()));
    _netmask->setText(presentation(_network->Netmask()));
    _gateway->setText(presentation(_network->Gateway()));
    _UpdateEnabledState();
}

void NetworkTolvanDialog::_ApplyToXML()
{
    // Read every address first, so that a bad one sends nothing at all.
    std::vector<SocketAddress> addresses;
    for (QLineEdit* field : {_address, _netmask, _gateway}) {
        try {
            addresses.emplace_back(field->text().trimmed().toStdString());
        } catch (const std::exception&) {
            QMessageBox::warning(this, windowTitle(), "\"" + field->text() + "\" is not an address.");
            return;
        }
    }
    _network->Name().set(_name->text().toStdString());
    _network->Configuration().set(_manual->isChecked() ? MANUAL : 0);
    _network->Ipaddress().set(addresses[0]);
    _network->Netmask().set(addresses[1]);
    _network->Gateway().set(addresses[2]);
    emit SendXMLChanges();
}

void NetworkTolvanDialog::_UpdateEnabledState()
{
    const bool editable = _manual->isChecked() && !_read_only;
    for (QLineEdit* field : {_address, _netmask, _gateway})
        field->setEnabled(editable);
}
