#include "watch/watchmodeldialog.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include <algorithm>

#include "service/genericconfigdialog.h"
#include "watch/mytablewidget.h"

WatchModelDialog::WatchModelDialog(QWidget* parent, const std::string& name, const std::string& type,
                                   const QString& model, std::string tag, std::vector<std::string> records,
                                   std::initializer_list<const char*> listened)
    : WatchDialog(parent, name, type, model, std::move(records)), _tag(std::move(tag))
{
    connect(_connector.get(), &Connector::Connected, this, &WatchModelDialog::OnConnected);
    connect(_connector.get(), &Connector::Disconnected, this, &WatchModelDialog::OnDisconnected);
    for (const char* record : listened)
        _connector->RegisterListener(record, this);
}

void WatchModelDialog::_LayOut(const std::vector<std::vector<QWidget*>>& rows)
{
    auto* grid = new QGridLayout;
    int width = 0;
    for (size_t r = 0; r < rows.size(); ++r) {
        for (size_t c = 0; c < rows[r].size(); ++c)
            grid->addWidget(rows[r][c], int(r), int(c));
        width = std::max(width, int(rows[r].size()));
    }
    grid->setColumnStretch(width, 1);
    auto* close = _Button("Close", &QDialog::close);
    grid->addWidget(close, int(rows.size()) - 1, width + 1);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_table);
    layout->addLayout(grid);
    _table->setFocus(Qt::OtherFocusReason);
}

void WatchModelDialog::_SendCommand(const std::string& command)
{
    _connector->OnSendRawXML("<arvex><" + _tag + "><cmd><" + command + ">true</" + command + "></cmd></" + _tag +
                             "></arvex>\n");
}

void WatchModelDialog::GotConnectorEvent(Connector&, std::string, std::string event, std::string)
{
    const struct {
        const char* event;
        QPushButton* button;
        const char* label;
    } toggles[] = {
        {"LIGHTSOURCECONNECTED", _light_source, "Lt Src Off"},
        {"LIGHTSOURCEDISCONNECTED", _light_source, "Lt Src On"},
        {"POWEROFF", _power, "Pwr On"},
        {"POWERON", _power, "Pwr Off"},
    };
    for (const auto& toggle : toggles)
        if (toggle.button && event == toggle.event)
            toggle.button->setText(toggle.label);
}

void WatchModelDialog::GotConnectorHeaderMatch(Connector& connector, std::string record)
{
    if (std::find(_names.begin(), _names.end(), record) != _names.end()) {
        GotConnectorHeader(connector, record);
        return;
    }
    if (!IsRunTimeHeader(record))
        return;
    _Refresh([&] {
        _names.push_back(record);
        _names.push_back(record.substr(0, record.size() - 1));
        _UpdateColumnHeader();
        _UpdateColumn(int(_names.size()) - 2, connector.Header(record));
    });
}

void WatchModelDialog::GotConnectorData(Connector& connector, std::string)
{
    if (_throttle.Due(connector.Time()))
        _UpdateValueColumns();
}

void WatchModelDialog::OnLightSourceClicked()
{
    const bool connect = _light_source->text().compare("Lt Src On", Qt::CaseInsensitive) == 0;
    _SendCommand(connect ? "connectlightsource" : "disconnectlightsource");
}

void WatchModelDialog::_ShowGeneric(GenericConfigDialog*& dialog,
                                    GenericConfigDialog* (WatchModelDialog::*make)())
{
    ShowToolWindow(dialog, [&] {
        GenericConfigDialog* made = (this->*make)();
        JoinToConnector(made, *_connector);
        return made;
    });
}

void WatchModelDialog::OnCfgClicked()
{
    _ShowGeneric(_config, &WatchModelDialog::_MakeConfigDialog);
}

void WatchModelDialog::OnFactoryClicked()
{
    _ShowGeneric(_factory, &WatchModelDialog::_MakeFactoryDialog);
}
