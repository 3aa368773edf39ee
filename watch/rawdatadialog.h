#pragma once
// Asking a Halden for a raw capture and writing it to a file.

#include <memory>
#include <string>

#include "link/connector.h"
#include "service/servicedialog.h"

class ConfigCfgRawDataCapture;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class _RawDataCapture;

/// The raw data capture of a Halden: when the recording starts, how many bytes, and the file that
/// gets them. "Capture" sets `when` and `size` in the document and sends them, then switches the
/// DATAFLRAW record on and starts the recording in one message. The lines that come back go
/// through a _RawDataCapture into the file as they arrive; a line with an empty payload ends the
/// capture. There is no time-out: without an end mark the capture stays open and "Capture" stays
/// disabled, until the link is lost: that ends it, so that a later capture's lines never reach
/// this one's file. Closing the window only hides it; a capture goes on in the background.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged(), Connector::Disconnected()
/// to OnDisconnected().
class RawDataDialog : public ServiceDialog, public Connector::Listener {
    Q_OBJECT
public:
    /// `section` is the `rawdatacapture` section of the connector's document and outlives the
    /// dialog. Listens to "DATAFLRAW" of the instrument `name`.
    RawDataDialog(QWidget* parent, const std::string& name, ConfigCfgRawDataCapture* section);
    ~RawDataDialog() override;

    /// One DATAFLRAW line, line feed included; ignored while no capture is in progress.
    void GotConnectorRawData(Connector& connector, std::string record, std::string line) override;

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    void OnXMLChanged();
    /// Asks for the file to write to.
    void OnBrowseButton();
    /// Starts a capture unless one is in progress. A size that is no number or below 1, or an
    /// empty file name, starts nothing, and nothing is said.
    void OnCaptureButton();
    /// A capture in progress ends, its file closed with what came, and the status says it was cut.
    void OnDisconnected();

private:
    void _UpdateFromXML();
    /// Back to idle, the file closed; `status` says why.
    void _EndCapture(const QString& status);

    ConfigCfgRawDataCapture* _section;
    QComboBox* _when;
    QLineEdit* _size;
    QLineEdit* _filename;
    QLabel* _status;
    QProgressBar* _progress;
    QPushButton* _capture_button;
    std::unique_ptr<_RawDataCapture> _capture;  ///< null while idle
    bool _transferring = false;
};
