#pragma once
// The stand-alone calibration panel for one Tolvan, started with "cal".

#include <QMainWindow>

#include <map>
#include <memory>
#include <string>

#include "discovery/bonjourclient.h"

class CalAdvancedDialog;
class Connector;
class QCloseEvent;

/// The window the program shows when started with "cal": the Tolvan's calibration panel alone,
/// whose "Close" closes the program. It holds a share of the instrument's `Connector` (type
/// "tolvan", whatever the instrument) under the instrument's name. Its geometry is kept under the
/// settings "Arvex"/"sondar-cal", apart from the main window's.
class MyCalMainWindow : public QMainWindow, public BonjourClientListener {
    Q_OBJECT
public:
    /// `title` is not shown: the window calls itself after `name`. With a non-zero `port` and a
    /// non-empty `address` the connector dials at once; otherwise the panel browses for Tolvans
    /// and dials the one whose service name is `name`.
    MyCalMainWindow(const std::string& title, const std::string& name, const std::string& address, int port);

    /// A service of exactly the window's name (case counts) is dialled at this address; the
    /// connector tries the addresses in the order they come. Any other service is ignored.
    void AddService(std::string name, std::string type, std::string domain, unsigned interface_index,
                    std::string host, const SocketAddress& address,
                    const std::map<std::string, std::string>& txt) override;

public slots:
    /// Shows the advanced calibration dialog, made at the first call.
    void OnCalAdvancedClicked();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::string _name;
    std::shared_ptr<Connector> _connector;
    CalAdvancedDialog* _advanced = nullptr;
    BonjourClient _discovery;
};
