#include "service/leaftext.h"

#include <QDateTimeEdit>

#include "configurable/configbuiltin.h"

QDateTimeEdit* StampEdit(const QString& format)
{
    auto* edit = new QDateTimeEdit;
    edit->setTimeSpec(Qt::UTC);
    edit->setDisplayFormat(format);
    return edit;
}

QDateTime DateTimeOf(const Timestamp& time)
{
    const int second = int(std::floor(time.sec()));
    return QDateTime(QDate(time.year(), time.month(), time.day()), QTime(time.hour(), time.min(), second), Qt::UTC);
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
        return QString::number(qlonglong(integer->get()));
    if (auto* real = dynamic_cast<const ConfigurableFloat*>(&leaf))
        return QString::number(real->get(), 'g', 6);
    if (auto* real = dynamic_cast<const ConfigurableDouble*>(&leaf))
        return QString::number(real->get(), 'g', 6);
    return QString();
}

namespace {

template <class Leaf, class T>
bool set_number(Leaf& leaf, const QString& text)
{
    const std::optional<T> value = NumberOf<T>(text);
    if (value)
        leaf.set(*value);
    return bool(value);
}

}  // namespace

bool SetLeafFromText(Configurable& leaf, const QString& text)
{
    if (auto* string = dynamic_cast<ConfigurableString*>(&leaf)) {
        string->set(text.toStdString());
        return true;
    }
    if (auto* integer = dynamic_cast<ConfigurableInteger*>(&leaf))
        return set_number<ConfigurableInteger, int64_t>(*integer, text);
    if (auto* real = dynamic_cast<ConfigurableFloat*>(&leaf))
        return set_number<ConfigurableFloat, float>(*real, text);
    if (auto* real = dynamic_cast<ConfigurableDouble*>(&leaf))
        return set_number<ConfigurableDouble, double>(*real, text);
    return false;
}
