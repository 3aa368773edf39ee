#pragma once
// Between the leaves of a document and the texts and times of widgets.

#include <QDateTime>
#include <QString>
#include <QTime>

#include "foundation/timestamp.h"

class Configurable;

/// The calendar fields of a time stamp, as they stand (no time zone is applied).
QDateTime DateTimeOf(const Timestamp& time);
Timestamp TimestampOf(const QDateTime& time);

/// A time of day kept in a time stamp as seconds since midnight (hours and minutes only).
QTime TimeOfDay(const Timestamp& time);
Timestamp TimestampOfDay(const QTime& time);

/// The value of a string, integer or float leaf as a user edits it; floats with six digits.
QString LeafText(const Configurable& leaf);
/// Sets a string, integer or float leaf from `text`; false, and the leaf untouched, when the text
/// is no number of the leaf's type (or the leaf is of another type).
bool SetLeafFromText(Configurable& leaf, const QString& text);
