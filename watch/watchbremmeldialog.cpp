#include "watch/watchbremmeldialog.h"

#include "service/modeldialogs.h"
#include "watch/mytablewidget.h"

namespace {

const char* const kRecords[] = {"DATAH",    "DATA",     "DATASTATH",  "DATASTAT",  "DATADIAGH", "DATADIAG",
                                "DATAGPSH", "DATAGPS",  "DATASONICH", "DATASONIC", "DATACH4H",  "DATACH4"};

}  // namespace

WatchBremmelDialog::WatchBremmelDialog(QWidget* parent, const std::string& name, const std::string& type)
    : WatchModelDialog(parent, name, type, "Bremmel", "bremmel",
                       std::vector<std::string>(std::begin(kRecords), std::end(kRecords)), {})
{
    resize(750, 800);
    for (size_t column = 0; column < _names.size(); ++column)
        _columns[_names[column]] = int(column);
    for (const std::string& record : _names)
        _connector->RegisterListener(record, this);
    _LayOut({{_Button("Start USB Logging", &WatchBremmelDialog::OnStartUSBLogging),
              _Button("Stop USB Logging", &WatchBremmelDialog::OnStopUSBLogging),
              _Button("Eject USB", &WatchBremmelDialog::OnEjectUSB), _log_button},
             {_Button("Config...", &WatchModelDialog::OnCfgClicked),
              _Button("Factory...", &WatchModelDialog::OnFactoryClicked),
              _Button("Clock...", &WatchBremmelDialog::OnClockClicked),
              _Button("Network...", &WatchBremmelDialog::OnNetworkClicked)}});
}

void WatchBremmelDialog::GotConnectorHeader(Connector& connector, std::string record)
{
    const auto found = _columns.find(record);
    if (found == _columns.end())
        return;
    _Refresh([&] { _UpdateColumn(found->second, connector.Header(record)); });
}

void WatchBremmelDialog::GotConnectorData(Connector& connector, std::string record)
{
    const auto found = _columns.find(record);
    if (found == _columns.end() || !_throttle.Due(connector.Time()))
        return;
    _Refresh([&] { _UpdateColumn(found->second, connector.VarStrings(record)); });
}

void WatchBremmelDialog::OnStartUSBLogging()
{
    _SendCommand("logusbstart");
}

void WatchBremmelDialog::OnStopUSBLogging()
{
    _SendCommand("logusbstop");
}

void WatchBremmelDialog::OnEjectUSB()
{
    _SendCommand("ejectusb");
}

void WatchBremmelDialog::OnClockClicked()
{
    ShowClockWindow(_clock, this, *_connector, _connector->Doc_Bremmel().Conf().Cfg().Clock());
}

void WatchBremmelDialog::OnNetworkClicked()
{
    ShowNetworkWindow(_network, this, *_connector, _connector->Doc_Bremmel().Conf().Cfg().Network());
}

GenericConfigDialog* WatchBremmelDialog::_MakeConfigDialog()
{
    return new ConfigBremmelDialog(this, _connector->Host(), _connector->Doc_Bremmel());
}

GenericConfigDialog* WatchBremmelDialog::_MakeFactoryDialog()
{
    return new FactoryBremmelDialog(this, _connector->Host(), _connector->Doc_Bremmel());
}
