#pragma once
// Between the leaves of a document and the texts and times of widgets.

#include <QDateTime>
#include <QString>
#include <QTime>

#include <cmath>
#include <optional>
#include <sstream>
#include <type_traits>

#include "foundation/timestamp.h"

class Configurable;
class QDateTimeEdit;

/// The number that a user typed, of type float, double or a 64-bit integer (base 10), in the C
/// locale with blanks around it allowed. Empty for a text that is no such number, and for a value
/// that is not finite ("nan", "inf", or beyond the type's range), which no instrument can take.
template <class T>
std::optional<T> NumberOf(const QString& typed)
{
    const QString text = typed.trimmed();
    bool ok = false;
    T value;
    if constexpr (std::is_integral_v<T>)
        value = T(text.toLongLong(&ok, 10));
    else if constexpr (std::is_same_v<T, float>)
        value = text.toFloat(&ok);
    else
        value = text.toDouble(&ok);
    if (!ok || !std::isfinite(double(value)))
        return std::nullopt;
    return value;
}

/// A value as a default output stream writes it: six digits for floats, the text form of a time
/// stamp.
template <class T>
QString StreamText(const T& value)
{
    std::ostringstream out;
    out << value;
    return QString::fromStdString(out.str());
}

/// An editor of the calendar fields of a time stamp, shown in `format`. It applies no time zone,
/// so that every stamp, also one in an hour that the local zone skips or repeats, reads as the
/// instrument wrote it.
QDateTimeEdit* StampEdit(const QString& format);

/// The calendar fields of a time stamp, as they stand (whole seconds, no time zone applied).
QDateTime DateTimeOf(const Timestamp& time);
Timestamp TimestampOf(const QDateTime& time);

/// A time of day kept in a time stamp as seconds since midnight (hours and minutes only).
QTime TimeOfDay(const Timestamp& time);
Timestamp TimestampOfDay(const QTime& time);

/// The value of a string, integer, float or double leaf as a user edits it; reals with six digits.
QString LeafText(const Configurable& leaf);
/// Sets a string, integer, float or double leaf from `text`; false, and the leaf untouched, when
/// NumberOf() refuses the text (or the leaf is of another type).
bool SetLeafFromText(Configurable& leaf, const QString& text);
