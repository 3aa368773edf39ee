#pragma once
// Helpers of the panel's tests.

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QInputDialog>
#include <QTimer>

#include <functional>
#include <string>

#include "app/myframe.h"

/// A description file for the panels made while it lives: the application takes a name of this
/// process's own, and the file lies beside the test program under that name.
class DescriptionFile {
public:
    explicit DescriptionFile(const std::string& xml) : _old_name(QCoreApplication::applicationName())
    {
        QCoreApplication::setApplicationName(QString("test_app_panel_%1").arg(QCoreApplication::applicationPid()));
        _path = QString::fromStdString(MyFrame::DescriptionFilePath());
        QFile file(_path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << _path.toStdString();
        file.write(QByteArray::fromStdString(xml));
    }
    ~DescriptionFile()
    {
        QFile::remove(_path);
        QCoreApplication::setApplicationName(_old_name);
    }
    DescriptionFile(const DescriptionFile&) = delete;
    DescriptionFile& operator=(const DescriptionFile&) = delete;

private:
    QString _old_name, _path;
};

/// Answers the next input dialog with `answer` once it shows.
inline void AnswerInputDialog(std::function<void(QInputDialog&)> answer)
{
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, answer] {
        if (auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            answer(*dialog);
        }
    });
    timer->start(10);
}
