#pragma once
// The log dialog of a connector: the file name, continuous or on-button mode, and one button
// whose text says what a press does ("Start", "Stop" or "Log Now"). Closing it ends logging.

#include <QDialog>

#include <memory>
#include <string>

class QLineEdit;
class QPushButton;
class Connector;

class LogDialog : public QDialog {
    Q_OBJECT

public:
    LogDialog(QWidget* parent, const std::string& host, std::shared_ptr<Connector> connector);

signals:
    void LogStatusChanged();

public slots:
    void OnStartButton();
    void OnContinuousRadio();
    void OnLogRadio();
    void OnBrowseButton();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void _Update();

    std::shared_ptr<Connector> _connector;
    QLineEdit* _filename;
    QPushButton* _start;
};
