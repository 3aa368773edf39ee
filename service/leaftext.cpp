#include "service/leaftext.h"

#include <cmath>

#include "configurable/configbuiltin.h"

QDateTime DateTimeOf(const Timestamp& time)
{
    const int second = int(std::floor(time.sec()));
    return QDateTime(QDate(time.year(), time.month(), time.day()), QTime(time.hour(), time.min(), second));
}

Timestamp TimestampOf(const QDateTime& time)
{
    const QDate date = time.date();
    const QTime clock = time.time();
    return Timestamp(date.year(), date.month(), date.day(), clock.hour(), clock.minute(), clock.second());
}

QTime TimeOfDay(const Timestamp& time)
{
    const int seconds = int(std::lround(time.get()));
    return QTime(0, 0).addSecs(seconds / 60 * 60);
}

Timestamp TimestampOfDay(const QTime& time)
{
    return Timestamp(time.hour() * 3600 + time.minute() * 60);
}

QString LeafText(const Configurable& leaf)
{
    if (auto* text = dynamic_cast<const ConfigurableString*>(&leaf))
        return QString::fromStdString(text->get());
    if (auto* integer = dynamic_cast<const ConfigurableInteger*>(&leaf))
        return QString::number(integer->get());
    if (auto* real = dynamic_cast<const ConfigurableFloat*>(&leaf))
        return QString::number(real->get(), 'g', 6);
    return QString();
}

bool SetLeafFromText(Configurable& leaf, const QString& text)
{
    bool ok = false;
    if (auto* string = dynamic_cast<ConfigurableString*>(&leaf)) {
        string->set(text.toStdString());
        return true;
    }
    if (auto* integer = dynamic_cast<ConfigurableInteger*>(&leaf)) {
        const qlonglong value = text.trimmed().toLongLong(&ok);
        if (ok)
            integer->set(value);
        return ok;
    }
    if (auto* real = dynamic_cast<ConfigurableFloat*>(&leaf)) {
        const float value = text.trimmed().toFloat(&ok);
        if (ok)
            real->set(value);
        return ok;
    }
    return false;
}
