#pragma once
// The main window of the plain program: a "File" menu around the instrument list.

#include <QMainWindow>

#include <string>
#include <vector>

#include "link/namedinstrument.h"

class MyFrame;
class QCloseEvent;
class StationStatusDialog;

/// The window the program shows when started without "cal". Its geometry is kept under the
/// settings "Arvex"/"sondar", restored at construction and stored on close.
class MyMainWindow : public QMainWindow {
    Q_OBJECT
public:
    /// `title` is not shown: the description file names the window. `program_path` (argument 0)
    /// locates the About box's text (or the installed one, app/datafiles.h) and the panel's
    /// helper programs. The list shows `instruments` besides those announced.
    MyMainWindow(const std::string& title, const std::string& program_path,
                 const std::vector<NamedInstrument>& instruments = {});

public slots:
    /// Runs the About box modally.
    void OnAbout();
    /// Asks for a file and writes the layout of the open watch windows into it.
    void OnSaveLayout();
    /// Asks for a layout file and opens it.
    void OnOpenLayout();
    /// Shows the one "Station Status" window, made at first use.
    void OnStationStatus();

public:
    /// Opens the windows and charts of a layout file. A file that cannot be read or holds no
    /// layout gets a message box saying why, and nothing opens; false then.
    bool OpenLayoutFile(const QString& path);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::string _about_text_path;
    MyFrame* _frame;
    StationStatusDialog* _station_status = nullptr;
};
