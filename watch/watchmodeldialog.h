#pragma once
// What the watch windows of the Quenta, Dravik, Halden and Bremmel share beyond the table: a grid
// of buttons, commands sent as one-line messages, tool windows made at first use, the generic
// configuration and factory dialogs, and the toggles that the instrument's events label.

#include <QPushButton>

#include <initializer_list>
#include <string>
#include <vector>

#include "watch/watchdialog.h"
#include "watch/toolwindow.h"
#include "watch/watchrules.h"

class GenericConfigDialog;

class WatchModelDialog : public WatchDialog {
    Q_OBJECT
public:
    /// "LIGHTSOURCECONNECTED" labels the light source button "Lt Src Off", "LIGHTSOURCEDISCONNECTED"
    /// "Lt Src On"; "POWEROFF" labels the power button "Pwr On", "POWERON" "Pwr Off". Others are ignored.
    void GotConnectorEvent(Connector& connector, std::string record, std::string event, std::string rest) override;
    /// For windows that listen to every header ("*H"): a record of the table refills its name
    /// column, and a new one that IsRunTimeHeader accepts is appended as a pair, in the order heard.
    void GotConnectorHeaderMatch(Connector& connector, std::string record) override;
    /// Refreshes every value column, not oftener than 0.5 s of the records' time.
    void GotConnectorData(Connector& connector, std::string record) override;

public slots:
    void OnConnected() {}
    void OnDisconnected() {}
    /// Connects the light source when the button reads "Lt Src On" (any case), else disconnects it.
    void OnLightSourceClicked();
    /// The model's configuration and factory dialogs.
    void OnCfgClicked();
    void OnFactoryClicked();

protected:
    /// `tag` is the model's tag in messages; `listened` the records this window listens to.
    WatchModelDialog(QWidget* parent, const std::string& name, const std::string& type, const QString& model,
                     std::string tag, std::vector<std::string> records, std::initializer_list<const char*> listened);

    virtual GenericConfigDialog* _MakeConfigDialog() = 0;
    virtual GenericConfigDialog* _MakeFactoryDialog() = 0;

    /// A button of the grid whose click calls `slot`.
    template <class Window, class Result>
    QPushButton* _Button(const QString& text, Result (Window::*slot)())
    {
        auto* button = new QPushButton(text, this);
        connect(button, &QPushButton::clicked, static_cast<Window*>(this), slot);
        return button;
    }
    /// The table above the rows of buttons; "Close" ends the last row, after a stretch.
    void _LayOut(const std::vector<std::vector<QWidget*>>& rows);
    /// Sends "<arvex><tag><cmd><command>true</command></cmd></tag></arvex>\n".
    void _SendCommand(const std::string& command);
    const std::string _tag;
    QPushButton* _light_source = nullptr;  ///< null in windows without one
    QPushButton* _power = nullptr;

private:
    void _ShowGeneric(GenericConfigDialog*& dialog, GenericConfigDialog* (WatchModelDialog::*make)());

    DataTimeThrottle _throttle;
    GenericConfigDialog* _config = nullptr;
    GenericConfigDialog* _factory = nullptr;
};
