#pragma once
// The output rate of an instrument's data stream, and polling.

#include <string>

#include "service/servicedialog.h"

class ConfigRate;
class QComboBox;

/// The rates of the model's output rate leaf, "Poll" for none; a choice goes out at once. "Poll"
/// asks for one data record and, under "Test Data", one test record.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged().
class RateDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// `rate` is the connector's document's and outlives the dialog; `type` is the model tag of
    /// the poll messages ("tolvan").
    RateDialog(QWidget* parent, const std::string& name, ConfigRate* rate, const std::string& type);

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    void OnRateChanged(int index);
    void OnPoll();
    void OnPollTest();
    void OnXMLChanged();

private:
    void _UpdateFromXML();
    void _ApplyToXML();

    ConfigRate* _rate;
    std::string _type;
    QComboBox* _rates;
};
