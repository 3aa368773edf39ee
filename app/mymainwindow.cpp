#include "app/mymainwindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>

#include "app/aboutdialog.h"
#include "app/datafiles.h"
#include "app/myframe.h"
#include "watch/plotexport.h"
#include "watch/stationstatusdialog.h"

namespace {
const char* const kOrganisation = "Arvex";
const char* const kApplication = "sondar";
}  // namespace

MyMainWindow::MyMainWindow(const std::string& title, const std::string& program_path,
                           const std::vector<NamedInstrument>& instruments)
    : _about_text_path(BesideOrInstalled(AboutTextPath(program_path))),
      _frame(new MyFrame(this, title, program_path, instruments))
{
    MyFrame* frame = _frame;

    auto* about = new QAction("&About...", this);
    connect(about, &QAction::triggered, this, &MyMainWindow::OnAbout);
    auto* refresh = new QAction("&Refresh", this);
    connect(refresh, &QAction::triggered, frame, &MyFrame::OnRefresh);
    auto* exit = new QAction("E&xit", this);
    connect(exit, &QAction::triggered, this, &QWidget::close);
    // Wired but in no menu and without a shortcut: a pretend instrument for trying the panel.
    auto* add_test_host = new QAction("&Add Test Host", this);
    connect(add_test_host, &QAction::triggered, frame, &MyFrame::OnAddTestHost);
    auto* remove_test_host = new QAction("&Remove Test Host", this);
    connect(remove_test_host, &QAction::triggered, frame, &MyFrame::OnRemoveTestHost);

    auto* open_layout = new QAction("&Open Layout...", this);
    connect(open_layout, &QAction::triggered, this, &MyMainWindow::OnOpenLayout);
    auto* save_layout = new QAction("&Save Layout...", this);
    connect(save_layout, &QAction::triggered, this, &MyMainWindow::OnSaveLayout);

    QMenu* file = menuBar()->addMenu("&File");
    file->addAction(about);
    file->addAction(refresh);
    file->addSeparator();
    file->addAction(open_layout);
    file->addAction(save_layout);
    file->addSeparator();
    file->addAction(exit);
    auto* station_status = new QAction("&Station Status...", this);
    connect(station_status, &QAction::triggered, this, &MyMainWindow::OnStationStatus);
    menuBar()->addMenu("&View")->addAction(station_status);
    setCentralWidget(frame);

    QSettings settings(kOrganisation, kApplication);
    restoreGeometry(settings.value("geometry").toByteArray());
}

void MyMainWindow::OnAbout()
{
    AboutDialog dialog(this, _about_text_path);
    dialog.exec();
}

void MyMainWindow::OnSaveLayout()
{
    SaveTextFile(this, "Save Layout", "Layout (*.json)", _frame->CurrentLayout().Write());
}

void MyMainWindow::OnOpenLayout()
{
    const QString path = QFileDialog::getOpenFileName(this, "Open Layout", QString(), "Layout (*.json);;All files (*)");
    if (!path.isEmpty())
        OpenLayoutFile(path);
}

bool MyMainWindow::OpenLayoutFile(const QString& path)
{
    QFile file(path);
    QString error;
    if (!file.open(QIODevice::ReadOnly))
        error = file.errorString();
    else {
        try {
            _frame->OpenLayout(WindowLayout::Read(file.readAll().toStdString()));
            return true;
        } catch (const WindowLayout::Error& e) {
            error = QString::fromStdString(e.what());
        }
    }
    QMessageBox::warning(this, "Open Layout",
                         "The layout " + QDir::toNativeSeparators(path) + " was not opened:\n" + error);
    return false;
}

void MyMainWindow::OnStationStatus()
{
    if (!_station_status)
        _station_status = new StationStatusDialog(this);
    _station_status->show();
    _station_status->activateWindow();
    _station_status->raise();
}

void MyMainWindow::closeEvent(QCloseEvent* event)
{
    QSettings settings(kOrganisation, kApplication);
    settings.setValue("geometry", saveGeometry());
    QMainWindow::closeEvent(event);
}
