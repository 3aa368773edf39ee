#include "watch/configmorvikdialog.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "link/connector.h"
#include "service/factorydialog.h"
#include "watch/toolwindow.h"

ConfigMorvikDialog::ConfigMorvikDialog(QWidget* parent, const std::string& name, const std::string& type)
    : ServiceDialog(parent),
      _connector(Connector::Factory(parent, name, type)),
      _morvik(_connector->Type() == "morvik" || _connector->Type() == "sarnel"),
      _head(_morvik ? &_connector->Doc_Morvik().Conf().Cfg().Head() : nullptr),
      _head_edit(new QLineEdit(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto* form = new QFormLayout;
    form->addRow("Head:", _head_edit);
    _head_edit->setEnabled(_head != nullptr);

    auto* refresh = new QPushButton("Refresh", this);
    auto* apply = new QPushButton("Apply", this);
    auto* factory = new QPushButton("Factory...", this);
    auto* clock = new QPushButton("Clock...", this);
    auto* network = new QPushButton("Network...", this);
    auto* close = new QPushButton("Close", this);
    factory->setEnabled(_morvik && _connector->Type() != "sarnel");

    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {refresh, apply, factory, clock, network})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addStretch();
    layout->addLayout(buttons);

    connect(refresh, &QPushButton::clicked, this, &ConfigMorvikDialog::OnRefreshClicked);
    connect(apply, &QPushButton::clicked, this, &ConfigMorvikDialog::OnApplyClicked);
    connect(factory, &QPushButton::clicked, this, &ConfigMorvikDialog::OnFactoryClicked);
    connect(clock, &QPushButton::clicked, this, &ConfigMorvikDialog::OnClockClicked);
    connect(network, &QPushButton::clicked, this, &ConfigMorvikDialog::OnNetworkClicked);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(_connector.get(), &Connector::GotXMLChanges, this, &ConfigMorvikDialog::OnXMLChanged);
    _SetTitle(name);
    _UpdateFromXML();
}

void ConfigMorvikDialog::Connect(const std::string& address, int scope, int port)
{
    _connector->Connect(address, scope, port);
    _SetTitle(_connector->Host() + ": IP=" + address);
}

void ConfigMorvikDialog::_SetTitle(const std::string& rest)
{
    setWindowTitle("Configuring Pelsen: " + QString::fromStdString(rest));
}

void ConfigMorvikDialog::_UpdateFromXML()
{
    if (_head)
        _head_edit->setText(QString::fromStdString(_head->get()));
    _head_edit->setModified(false);
}

void ConfigMorvikDialog::_ApplyToXML()
{
    if (_head)
        _head->set(_head_edit->text().toUtf8().toStdString());
    _head_edit->setModified(false);
    _connector->OnSendXMLChanges();
}

void ConfigMorvikDialog::OnRefreshClicked()
{
    _UpdateFromXML();
}

void ConfigMorvikDialog::OnApplyClicked()
{
    _ApplyToXML();
}

void ConfigMorvikDialog::OnXMLChanged()
{
    if (!_head_edit->isModified())
        _UpdateFromXML();
}

ConfigCfgClock& ConfigMorvikDialog::_Clock()
{
    return _morvik ? _connector->Doc_Morvik().Conf().Cfg().Clock() : _connector->Doc_Tolvan().Conf().Cfg().Clock();
}

ConfigCfgNetwork& ConfigMorvikDialog::_Network()
{
    return _morvik ? _connector->Doc_Morvik().Conf().Cfg().Network()
                   : _connector->Doc_Tolvan().Conf().Cfg().Network();
}

void ConfigMorvikDialog::OnFactoryClicked()
{
    ShowToolWindow(_factory, [this] {
        auto* dialog = new FactoryMorvikDialog(this, _connector->Host(), &_connector->Doc_Morvik().Conf().Factory());
        JoinToConnector(dialog, *_connector);
        return dialog;
    });
}

void ConfigMorvikDialog::OnClockClicked()
{
    ShowClockWindow(_clock, this, *_connector, _Clock());
}

void ConfigMorvikDialog::OnNetworkClicked()
{
    ShowNetworkWindow(_network, this, *_connector, _Network());
}
