#include "app/datafiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

std::string InstalledDataDir()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + "/" SONDAR_DATA_FROM_BIN).toStdString() + "/";
}

std::string BesideOrInstalled(const std::string& beside)
{
    const QFileInfo file(QString::fromStdString(beside));
    if (file.exists())
        return beside;
    const std::string installed = InstalledDataDir() + file.fileName().toStdString();
    return QFileInfo::exists(QString::fromStdString(installed)) ? installed : beside;
}
