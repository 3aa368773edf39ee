#include "watch/watchdravikdialog.h"

#include "service/caldravikadvanceddialog.h"
#include "service/caldravikdialog.h"
#include "service/matchdialog.h"
#include "service/modeldialogs.h"
#include "watch/plotwavedialog.h"

WatchDravikDialog::WatchDravikDialog(QWidget* parent, const std::string& name, const std::string& type)
    : WatchModelDialog(parent, name, type, "Dravik", "dravik",
                       {"DATAH", "DATA", "DATASTATH", "DATASTAT", "DATADIAGH", "DATADIAG"},
                       {"*H", "DATA", "DATAEVENT"})
{
    resize(750, 800);
    _log_button->setText("Log...");  // it opens the connector's log dialog, whatever the state
    _light_source = _Button("Lt Src On", &WatchModelDialog::OnLightSourceClicked);
    _power = _Button("Pwr Off", &WatchDravikDialog::OnPowerClicked);
    _LayOut({{_Button("Reboot", &WatchDravikDialog::OnRebootClicked), _light_source, _power,
              _Button("Wave...", &WatchDravikDialog::OnWaveClicked), _log_button},
             {_Button("Cal...", &WatchDravikDialog::OnCalClicked), _Button("Config...", &WatchModelDialog::OnCfgClicked),
              _Button("Factory...", &WatchModelDialog::OnFactoryClicked),
              _Button("Rate...", &WatchDravikDialog::OnRateClicked),
              _Button("Match...", &WatchDravikDialog::OnMatchClicked)}});
}

void WatchDravikDialog::OnRebootClicked()
{
    _SendCommand("reboot");
}

void WatchDravikDialog::OnPowerClicked()
{
    _SendCommand(_power->text().compare("Pwr On", Qt::CaseInsensitive) == 0 ? "poweron" : "poweroff");
}

void WatchDravikDialog::OnWaveClicked()
{
    ShowToolWindow(_wave, [this] {
        const std::string& host = _connector->Host();
        return new PlotWaveDialog(this, VariableString(host, "DATACELLA", "WAVEFORM").str(),
                                  VariableString(host, "DATACELLB", "WAVEFORM").str(), "Waveforms", "Cell A",
                                  "Cell B", 0, 0, 0, 0, 65535, true);
    });
}

void WatchDravikDialog::OnCalClicked()
{
    ShowCalPanel(_cal, this, &WatchDravikDialog::OnCalAdvancedClicked, *_connector, _connector->Doc_Dravik());
}

void WatchDravikDialog::OnCalAdvancedClicked()
{
    ShowCalEditor(_cal_advanced, this, *_connector, _connector->Doc_Dravik());
}

void WatchDravikDialog::OnRateClicked()
{
    ShowToolWindow(_output, [this] {
        auto* dialog = new OutputDravikDialog(this, _connector->Host(), _connector->Doc_Dravik());
        JoinToConnector(static_cast<GenericConfigDialog*>(dialog), *_connector);
        return static_cast<GenericConfigDialog*>(dialog);
    });
}

void WatchDravikDialog::OnMatchClicked()
{
    ShowToolWindow(_match, [this] {
        auto* dialog = new MatchDialog(this, _connector->Host(), &_connector->Doc_Dravik().Conf().Cfg().Match().Percent());
        connect(dialog, &MatchDialog::SendXMLChanges, _connector.get(), &Connector::OnSendXMLChanges);
        return dialog;
    });
}

void WatchDravikDialog::OnLogClicked()
{
    _connector->ShowLogDialog();
}

GenericConfigDialog* WatchDravikDialog::_MakeConfigDialog()
{
    return new ConfigDravikDialog(this, _connector->Host(), _connector->Doc_Dravik());
}

GenericConfigDialog* WatchDravikDialog::_MakeFactoryDialog()
{
    return new FactoryDravikDialog(this, _connector->Host(), _connector->Doc_Dravik());
}
