#include "watch/watchquentadialog.h"

#include "service/modeldialogs.h"

WatchQuentaDialog::WatchQuentaDialog(QWidget* parent, const std::string& name, const std::string& type)
    : WatchModelDialog(parent, name, type, "Quenta", "quenta",
                       {"DATAH", "DATA", "DATASTATH", "DATASTAT", "DATADIAGH", "DATADIAG"},
                       {"*H", "DATA", "DATAEVENT"})
{
    resize(750, 400);
    _light_source = _Button("Lt Src On", &WatchModelDialog::OnLightSourceClicked);
    _LayOut({{_light_source, _Button("Config...", &WatchModelDialog::OnCfgClicked),
              _Button("Factory...", &WatchModelDialog::OnFactoryClicked), _log_button}});
}

GenericConfigDialog* WatchQuentaDialog::_MakeConfigDialog()
{
    return new ConfigQuentaDialog(this, _connector->Host(), _connector->Doc_Quenta());
}

GenericConfigDialog* WatchQuentaDialog::_MakeFactoryDialog()
{
    return new FactoryQuentaDialog(this, _connector->Host(), _connector->Doc_Quenta());
}
