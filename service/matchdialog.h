#pragma once
// The match valve: straight, cross or the other way round.

#include <string>

#include "service/servicedialog.h"

class ConfigurableFloat;

/// Sets the match valve's float leaf to 100 ("Straight") or -100 ("Cross"); "Toggle" goes to
/// 100 from any value below 0 and to -100 otherwise.
///
/// Joint: SendXMLChanges() to Connector::OnSendXMLChanges(). The buttons show no state, so the
/// dialog has nothing to draw from the document.
class MatchDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// `valve` is the connector's document's and outlives the dialog.
    MatchDialog(QWidget* parent, const std::string& name, ConfigurableFloat* valve);

signals:
    void SendXMLChanges();

public slots:
    void OnStraightClicked();
    void OnCrossClicked();
    void OnToggleClicked();

private:
    void _Set(float value);

    ConfigurableFloat* _valve;
};
