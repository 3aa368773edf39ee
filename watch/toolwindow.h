#pragma once
// How a window opens its tool windows: each made at its first use and kept, then shown, activated
// and raised at every use; a tool window over the document is joined to the instrument's link.

#include "link/connector.h"

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
