#include "watch/rawdatadialog.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>
#include <stdexcept>

#include "libskarn/dochalden.h"
#include "link/rawdatacapture.h"
#include "link/variablestring.h"

RawDataDialog::RawDataDialog(QWidget* parent, const std::string& name, ConfigCfgRawDataCapture* section)
    : ServiceDialog(parent), _section(section)
{
    setWindowTitle(QString::fromStdString("Raw Data Capture: " + name));

    _when = new QComboBox;
    _when->addItem("Now", 0);
    _when->addItem("Measure", 1);
    _when->addItem("Flash", 2);
    _when->addItem("Dark", 3);
    _size = new QLineEdit("0");
    _size->setAlignment(Qt::AlignRight);
    _size->setValidator(new QIntValidator(0, 67000000, _size));
    _filename = new QLineEdit("raw.dat");
    auto* browse = new QPushButton("Browse...");

    auto* form = new QGridLayout;
    form->addWidget(new QLabel("When:"), 0, 0);
    form->addWidget(_when, 0, 1);
    form->addWidget(new QLabel("Size:"), 1, 0);
    form->addWidget(_size, 1, 1);
    form->addWidget(new QLabel("Bytes"), 1, 2);
    form->addWidget(new QLabel("Filename:"), 2, 0);
    form->addWidget(_filename, 2, 1);
    form->addWidget(browse, 2, 2);

    _status = new QLabel("Status: Idle");
    _progress = new QProgressBar;
    _progress->setValue(0);
    _progress->setFormat("%v of %m bytes");
    _progress->setTextVisible(false);  // until there is a size to count against

    _capture_button = new QPushButton("Capture");
    auto* close = new QPushButton("Close");
    // Return in a line edit must not close the window.
    close->setDefault(false);
    close->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(_capture_button);
    buttons->addStretch();
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(_status);
    layout->addWidget(_progress);
    layout->addLayout(buttons);

    connect(browse, &QPushButton::clicked, this, &RawDataDialog::OnBrowseButton);
    connect(_capture_button, &QPushButton::clicked, this, &RawDataDialog::OnCaptureButton);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    _UpdateFromXML();
    Connector::LookupAndRegisterListener(VariableString(name, "DATAFLRAW", "RAWDATA").str(), this);
}

RawDataDialog::~RawDataDialog()
{
    Connector::LookupAndUnRegisterListener(this);
}

void RawDataDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void RawDataDialog::_UpdateFromXML()
{
    _size->setText(QString::number(_section->Size().get()));
    const int index = _when->findData(_section->When().get());
    if (index >= 0)
        _when->setCurrentIndex(index);
}

void RawDataDialog::OnBrowseButton()
{
    const QString file = QFileDialog::getSaveFileName(this, "Log Raw Data To File", _filename->text());
    if (!file.isEmpty())
        _filename->setText(file);
}

void RawDataDialog::OnCaptureButton()
{
    if (_capture)
        return;
    bool size_ok = false, when_ok = false;
    const int size = _size->text().toInt(&size_ok, 10);
    const int when = _when->currentData().toInt(&when_ok);
    const std::string filename = _filename->text().toUtf8().toStdString();
    if (!size_ok || !when_ok || size < 1 || filename.empty())
        return;
    _capture = std::make_unique<_RawDataCapture>(filename);

    // The settings go first: the instrument reads them when the recording starts.
    _section->Size().set(size);
    _section->When().set(when);
    emit SendXMLChanges();
    emit SendRawXML(_RawDataCapture::START_MESSAGE);

    _status->setText("Status: Recording raw data...");
    _transferring = false;
    _capture_button->setEnabled(false);
    _progress->setRange(0, size);
    _progress->setValue(0);
    _progress->setTextVisible(true);
}

void RawDataDialog::OnDisconnected()
{
    if (_capture)
        _EndCapture("Status: Transfer cut: the link to the instrument was lost");
}

void RawDataDialog::GotConnectorRawData(Connector&, std::string record, std::string line)
{
    if (!_capture)
        return;
    const std::string_view payload = _RawDataCapture::Payload(record, line);
    if (payload.empty()) {
        _EndCapture("Status: Idle");
        return;
    }
    if (!_transferring) {
        _status->setText("Status: Transfering raw data...");
        _transferring = true;
    }
    try {
        _capture->HandleData(payload.data(), payload.data() + payload.size());
    } catch (const std::runtime_error& e) {
        // The rest of this capture cannot be decompressed; the file keeps what came before.
        _EndCapture("Status: Capture failed: " + QString::fromStdString(e.what()));
        return;
    }
    _progress->setValue(int(std::min<uint64_t>(_capture->BytesWritten(), uint64_t(_progress->maximum()))));
}

void RawDataDialog::_EndCapture(const QString& status)
{
    _capture.reset();
    _status->setText(status);
    _transferring = false;
    _capture_button->setEnabled(true);
}
