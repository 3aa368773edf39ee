#include "watch/watchhaldendialog.h"

#include "libskarn/dochalden.h"
#include "service/calhaldenadvanceddialog.h"
#include "service/calhaldendialog.h"
#include "service/modeldialogs.h"
#include "watch/fpgahaldendialog.h"
#include "watch/rawdatadialog.h"

WatchHaldenDialog::WatchHaldenDialog(QWidget* parent, const std::string& name, const std::string& type)
    : WatchModelDialog(parent, name, type, "Halden", "halden",
                       {"DATAH", "DATA", "DATASTATH", "DATASTAT", "DATADIAGH", "DATADIAG", "DATATESTH", "DATATEST"},
                       {"DATAH", "DATASTATH", "DATADIAGH", "DATATESTH", "DATA", "DATATEST"})
{
    resize(750, 400);
    _LayOut({{_Button("Reboot", &WatchHaldenDialog::OnRebootClicked), _Button("Rect", &WatchHaldenDialog::OnRectClicked),
              _Button("MPF", &WatchHaldenDialog::OnMPFClicked),
              _Button("Induction", &WatchHaldenDialog::OnInductionClicked),
              _Button("Dark", &WatchHaldenDialog::OnDarkClicked), _Button("Break", &WatchHaldenDialog::OnBreakClicked),
              _Button("Reset", &WatchHaldenDialog::OnResetClicked)},
             {_Button("Cal...", &WatchHaldenDialog::OnCalClicked), _Button("Config...", &WatchModelDialog::OnCfgClicked),
              _Button("Factory...", &WatchModelDialog::OnFactoryClicked),
              _Button("FPGA I/O...", &WatchHaldenDialog::OnFPGAClicked),
              _Button("Raw Capture...", &WatchHaldenDialog::OnRawCaptureClicked), _log_button}});
}

void WatchHaldenDialog::GotConnectorData(Connector&, std::string)
{
    if (_clock.Due())
        _UpdateValueColumns();
}

void WatchHaldenDialog::OnRebootClicked()
{
    _SendCommand("reboot");
}

void WatchHaldenDialog::OnRectClicked()
{
    _SendCommand("rect");
}

void WatchHaldenDialog::OnMPFClicked()
{
    _SendCommand("mpf");
}

void WatchHaldenDialog::OnInductionClicked()
{
    _SendCommand("induction");
}

void WatchHaldenDialog::OnDarkClicked()
{
    _SendCommand("dark");
}

void WatchHaldenDialog::OnBreakClicked()
{
    _SendCommand("break");
}

void WatchHaldenDialog::OnResetClicked()
{
    _SendCommand("reset");
}

void WatchHaldenDialog::OnFPGAClicked()
{
    ShowToolWindow(_fpga, [this] {
        auto* dialog = new FPGAHaldenDialog(this, _connector->Host());
        connect(dialog, &FPGAHaldenDialog::SendRawText, _connector.get(), &Connector::OnSendRawXML);
        return dialog;
    });
}

void WatchHaldenDialog::OnCalClicked()
{
    ShowCalPanel(_cal, this, &WatchHaldenDialog::OnCalAdvancedClicked, *_connector, _connector->Doc_Halden());
}

void WatchHaldenDialog::OnCalAdvancedClicked()
{
    ShowCalEditor(_cal_advanced, this, *_connector, _connector->Doc_Halden());
}

void WatchHaldenDialog::OnRawCaptureClicked()
{
    ShowToolWindow(_raw, [this] {
        auto* dialog = new RawDataDialog(this, _connector->Host(), &_connector->Doc_Halden().Conf().Cfg().Rawdatacapture());
        JoinToConnector(dialog, *_connector);
        connect(_connector.get(), &Connector::Disconnected, dialog, &RawDataDialog::OnDisconnected);
        return dialog;
    });
}

GenericConfigDialog* WatchHaldenDialog::_MakeConfigDialog()
{
    return new ConfigHaldenDialog(this, _connector->Host(), _connector->Doc_Halden());
}

GenericConfigDialog* WatchHaldenDialog::_MakeFactoryDialog()
{
    return new FactoryHaldenDialog(this, _connector->Host(), _connector->Doc_Halden());
}
