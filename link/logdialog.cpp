#include "link/logdialog.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "link/connector.h"

LogDialog::LogDialog(QWidget* parent, const std::string& host, std::shared_ptr<Connector> connector)
    : QDialog(parent), _connector(std::move(connector))
{
    setWindowTitle(QString("Log Data: ") + QString::fromStdString(host));
    auto* layout = new QVBoxLayout(this);

    auto* file_row = new QHBoxLayout;
    file_row->addWidget(new QLabel("Filename:"));
    _filename = new QLineEdit;
    file_row->addWidget(_filename);
    auto* browse = new QPushButton("Browse...");
    file_row->addWidget(browse);
    layout->addLayout(file_row);

    auto* when = new QGroupBox("When");
    auto* when_layout = new QVBoxLayout(when);
    auto* continuous = new QRadioButton("&Continuous");
    continuous->setChecked(true);
    auto* on_button = new QRadioButton("&On Log Button");
    when_layout->addWidget(continuous);
    when_layout->addWidget(on_button);
    layout->addWidget(when);
    layout->addStretch();

    auto* buttons = new QHBoxLayout;
    _start = new QPushButton;
    buttons->addWidget(_start);
    buttons->addStretch();
    auto* close_button = new QPushButton("Close");
    buttons->addWidget(close_button);
    layout->addLayout(buttons);

    connect(browse, &QPushButton::clicked, this, &LogDialog::OnBrowseButton);
    connect(continuous, &QRadioButton::clicked, this, &LogDialog::OnContinuousRadio);
    connect(on_button, &QRadioButton::clicked, this, &LogDialog::OnLogRadio);
    connect(_start, &QPushButton::clicked, this, &LogDialog::OnStartButton);
    connect(close_button, &QPushButton::clicked, this, &QDialog::close);
    _Update();
}

void LogDialog::_Update()
{
    _filename->setText(QString::fromStdString(_connector->LogFileName()));
    if (!_connector->LogContinuous())
        _start->setText("Log Now");
    else
        _start->setText(_connector->IsLogging() ? "Stop" : "Start");
    emit LogStatusChanged();
}

void LogDialog::OnStartButton()
{
    if (_connector->LogContinuous() && _connector->IsLogging()) {
        _connector->StopLoggingToFile();
    } else if (_connector->IsLogging()) {
        _connector->LogDataNow();
    } else {
        _connector->SetLogFileName(_filename->text().toStdString());
        _connector->StartLoggingToFile();
        if (!_connector->LogContinuous())
            _connector->LogDataNow();
    }
    _Update();
}

void LogDialog::OnContinuousRadio()
{
    _connector->SetLogContinuous(true);
    _Update();
}

void LogDialog::OnLogRadio()
{
    _connector->SetLogContinuous(false);
    _Update();
}

void LogDialog::OnBrowseButton()
{
    const QString current = QString::fromStdString(_connector->LogFileName());
    const QString name = QFileDialog::getSaveFileName(this, "Choose Filename", current, QString());
    if (name.isEmpty() || name == current)
        return;
    _connector->StopLoggingToFile();
    _connector->SetLogFileName(name.toStdString());
    _Update();
}

void LogDialog::closeEvent(QCloseEvent* event)
{
    _connector->StopLoggingToFile();
    event->accept();
    emit LogStatusChanged();
}
