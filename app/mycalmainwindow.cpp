#include "app/mycalmainwindow.h"

#include <QCloseEvent>
#include <QLabel>
#include <QSettings>

#include "link/connector.h"

namespace {
const char* const kOrganisation = "Arvex";
const char* const kApplication = "sondar-cal";
}  // namespace

MyCalMainWindow::MyCalMainWindow(const std::string& /*title*/, const std::string& name, const std::string& address,
                                 int port)
    : _name(name), _connector(Connector::Factory(this, name, "tolvan")), _discovery(this)
{
    setWindowTitle(QString::fromStdString("Calibration Control Panel: " + _name));

    auto* panel = new QLabel("Calibration controls are not available in this version.", this);
    panel->setAlignment(Qt::AlignCenter);
    panel->setMargin(24);
    setCentralWidget(panel);

    QSettings settings(kOrganisation, kApplication);
    restoreGeometry(settings.value("geometry").toByteArray());

    if (port != 0 && !address.empty())
        _connector->Connect(address, 0, port);
    else
        _discovery.Browse("_arvex-tolvan._tcp");
}

void MyCalMainWindow::AddService(std::string name, std::string, std::string, unsigned, std::string,
                                 const SocketAddress& address, const std::map<std::string, std::string>&)
{
    if (name == _name)
        _connector->Connect(address.Presentation(), static_cast<int>(address.Scope()), address.Port());
}

void MyCalMainWindow::closeEvent(QCloseEvent* event)
{
    QSettings settings(kOrganisation, kApplication);
    settings.setValue("geometry", saveGeometry());
    QMainWindow::closeEvent(event);
}
