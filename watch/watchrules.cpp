#include "watch/watchrules.h"

bool IsRunTimeHeader(const std::string& name)
{
    return name.size() >= 6 && name.back() == 'H' && name != "DATACLOCKH";
}

bool DataTimeThrottle::Due(double t)
{
    if (t - _last < 0.5)
        return false;
    _last = t;
    return true;
}

bool ClockThrottle::Due(const QTime& now)
{
    if (_next.isValid() && now < _next)
        return false;
    _next = now.addMSecs(200);
    return true;
}

bool BurstThrottle::Due(double t)
{
    const double dt = t - _last;
    if (dt >= 0.01 && dt < 0.5)
        return false;
    _last = t;
    return true;
}

std::string ConsoleMessage(const QString& text)
{
    std::string message = text.toStdString() + "\n";
    if (!text.contains("out", Qt::CaseInsensitive))
        message += "out\n";
    return message;
}
