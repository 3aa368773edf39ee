#pragma once
// How a window opens its tool windows: each made at its first use and kept, then shown, activated
// and raised at every use; a tool window over the document is joined to the instrument's link.
// The clock, network and calibration windows that several watch windows offer open here alike.

#include "link/connector.h"

class ClockTolvanDialog;
class ConfigCfgClock;
class ConfigCfgNetwork;
class NetworkTolvanDialog;

/// Makes `dialog` with `make` when it is still null, then brings it to the front.
template <class Dialog, class Make>
void ShowToolWindow(Dialog*& dialog, Make make)
{
    if (!dialog)
        dialog = make();
    dialog->show();
    dialog->activateWindow();
    dialog->raise();
}

/// The dialog's changes go out through the connector, and new values come in; for a dialog that
/// sends no ready-made messages.
template <class Dialog>
void JoinChangesToConnector(Dialog* dialog, Connector& connector)
{
    QObject::connect(dialog, &Dialog::SendXMLChanges, &connector, &Connector::OnSendXMLChanges);
    QObject::connect(&connector, &Connector::GotXMLChanges, dialog, &Dialog::OnXMLChanged);
}

/// The dialog's changes and messages go out through the connector, and new values come in.
template <class Dialog>
void JoinToConnector(Dialog* dialog, Connector& connector)
{
    JoinChangesToConnector(dialog, connector);
    QObject::connect(dialog, &Dialog::SendRawXML, &connector, &Connector::OnSendRawXML);
}

/// The clock window over `section`, made at its first use and joined to the connector. Every
/// opening asks the instrument for its clock at once.
void ShowClockWindow(ClockTolvanDialog*& dialog, QWidget* window, Connector& connector, ConfigCfgClock& section);

/// The network window over `section`, made at its first use and joined to the connector.
void ShowNetworkWindow(NetworkTolvanDialog*& dialog, QWidget* window, Connector& connector,
                       ConfigCfgNetwork& section);

/// A model's calibration panel over `document` (not standalone), made at its first use and joined
/// to the connector; its "Advanced..." calls `advanced` of `window`.
template <class Panel, class Window, class Document>
void ShowCalPanel(Panel*& panel, Window* window, void (Window::*advanced)(), Connector& connector, Document& document)
{
    ShowToolWindow(panel, [&] {
        auto* made = new Panel(window, connector.Host(), &document, false);
        JoinToConnector(made, connector);
        QObject::connect(made, &Panel::OnAdvancedClicked, window, advanced);
        return made;
    });
}

/// A model's advanced calibration dialog over `document`, made at its first use: its changes go
/// out, and after an apply the connector reads the document anew.
template <class Editor, class Document>
void ShowCalEditor(Editor*& editor, QWidget* window, Connector& connector, Document& document)
{
    ShowToolWindow(editor, [&] {
        auto* made = new Editor(window, connector.Host(), &document);
        JoinChangesToConnector(made, connector);
        QObject::connect(made, &Editor::CalUpdated, &connector, &Connector::OnForceXMLUpdate);
        return made;
    });
}
