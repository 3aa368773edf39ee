#pragma once
// The stand-alone calibration panel for one Tolvan, started with "cal".

#include <QMainWindow>

#include <memory>
#include <string>

class Connector;
class QCloseEvent;

/// The window the program shows when started with "cal". It holds a share of the instrument's
/// `Connector` (type "tolvan", whatever the instrument) under the instrument's name. Its geometry
/// is kept under the settings "Arvex"/"sondar-cal", apart from the main window's.
class MyCalMainWindow : public QMainWindow {
    Q_OBJECT
public:
    /// `title` is not shown: the window calls itself after `name`. With a non-zero `port` and a
    /// non-empty `address` the connector dials at once; otherwise the panel just shows.
    MyCalMainWindow(const std::string& title, const std::string& name, const std::string& address, int port);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::string _name;
    std::shared_ptr<Connector> _connector;
};
