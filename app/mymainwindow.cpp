#include "app/mymainwindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>

#include "app/aboutdialog.h"

namespace {
const char* const kOrganisation = "Arvex";
const char* const kApplication = "sondar";
}  // namespace

MyMainWindow::MyMainWindow(const std::string& /*title*/, const std::string& program_path)
    : _about_text_path(AboutTextPath(program_path))
{
    auto* about = new QAction("&About...", this);
    connect(about, &QAction::triggered, this, &MyMainWindow::OnAbout);
    auto* exit = new QAction("E&xit", this);
    connect(exit, &QAction::triggered, this, &QWidget::close);

    QMenu* file = menuBar()->addMenu("&File");
    file->addAction(about);
    file->addSeparator();
    file->addAction(exit);
    setCentralWidget(new QWidget(this));

    QSettings settings(kOrganisation, kApplication);
    restoreGeometry(settings.value("geometry").toByteArray());
}

void MyMainWindow::OnAbout()
{
    AboutDialog dialog(this, _about_text_path);
    dialog.exec();
}

void MyMainWindow::closeEvent(QCloseEvent* event)
{
    QSettings settings(kOrganisation, kApplication);
    settings.setValue("geometry", saveGeometry());
    QMainWindow::closeEvent(event);
}
