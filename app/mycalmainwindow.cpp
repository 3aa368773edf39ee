#include "app/mycalmainwindow.h"

#include <QCloseEvent>
#include <QSettings>

#include "link/connector.h"
#include "service/caladvanceddialog.h"
#include "service/caltolvandialog.h"

namespace {
const char* const kOrganisation = "Arvex";
const char* const kApplication = "sondar-cal";
}  // namespace

MyCalMainWindow::MyCalMainWindow(const std::string& /*title*/, const std::string& name, const std::string& address,
                                 int port)
    : _name(name), _connector(Connector::Factory(this, name, "tolvan")), _discovery(this)
{
    setWindowTitle(QString::fromStdString("Calibration Control Panel: " + _name));

    auto* panel = new CalTolvanDialog(this, _name, &_connector->Doc_Tolvan(), true);
    setCentralWidget(panel);
    connect(panel, &CalTolvanDialog::SendXMLChanges, _connector.get(), &Connector::OnSendXMLChanges);
    connect(_connector.get(), &Connector::GotXMLChanges, panel, &CalTolvanDialog::OnXMLChanged);
    connect(panel, &CalTolvanDialog::SendRawXML, _connector.get(), &Connector::OnSendRawXML);
    connect(panel, &CalTolvanDialog::OnAdvancedClicked, this, &MyCalMainWindow::OnCalAdvancedClicked);
    connect(panel, &CalTolvanDialog::OnCloseClicked, this, &QWidget::close);
    resize(panel->size());  // the panel's own width, until the stored geometry says otherwise

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

void MyCalMainWindow::OnCalAdvancedClicked()
{
    if (!_advanced) {
        _advanced = new CalAdvancedDialog(this, _connector->Host(), &_connector->Doc_Tolvan());
        connect(_advanced, &CalAdvancedDialog::SendXMLChanges, _connector.get(), &Connector::OnSendXMLChanges);
        connect(_advanced, &CalAdvancedDialog::CalUpdated, _connector.get(), &Connector::OnForceXMLUpdate);
        connect(_connector.get(), &Connector::GotXMLChanges, _advanced, &CalAdvancedDialog::OnXMLChanged);
    }
    _advanced->show();
}

void MyCalMainWindow::closeEvent(QCloseEvent* event)
{
    QSettings settings(kOrganisation, kApplication);
    settings.setValue("geometry", saveGeometry());
    QMainWindow::closeEvent(event);
}
