#include "watch/toolwindow.h"

#include "service/clocktolvandialog.h"
#include "service/networktolvandialog.h"

void ShowClockWindow(ClockTolvanDialog*& dialog, QWidget* window, Connector& connector, ConfigCfgClock& section)
{
    ShowToolWindow(dialog, [&] {
        auto* made = new ClockTolvanDialog(window, connector.Host(), &section);
        JoinToConnector(made, connector);
        return made;
    });
    dialog->OnRefresh();
}

void ShowNetworkWindow(NetworkTolvanDialog*& dialog, QWidget* window, Connector& connector, ConfigCfgNetwork& section)
{
    ShowToolWindow(dialog, [&] {
        auto* made = new NetworkTolvanDialog(window, connector.Host(), &section, connector.Type());
        JoinToConnector(made, connector);
        return made;
    });
}
