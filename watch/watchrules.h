#pragma once
// The rules by which the watch windows of the other models grow their tables and pace their
// repaints, and the text their I/O console sends; plain values, apart from any widget.

#include <QString>
#include <QTime>

#include <string>

/// Whether a header that an instrument announces makes a new pair of columns: 6 characters or
/// more, ending in "H", and not "DATACLOCKH" (the clock record has a line of its own).
bool IsRunTimeHeader(const std::string& name);

/// Refreshes at most once per 0.5 s of the records' own time. A clock that runs back holds the
/// refresh until it has caught up.
class DataTimeThrottle {
public:
    /// Whether a record of time `t` refreshes; if so, `t` becomes the time of the last refresh.
    bool Due(double t);

private:
    double _last = 0;
};

/// Refreshes at most once per 200 ms of the computer's clock, whatever times the records carry.
class ClockThrottle {
public:
    /// Whether a record that arrives at time of day `now` refreshes.
    bool Due(const QTime& now = QTime::currentTime());

private:
    QTime _next;
};

/// Lets a burst of records with one time stamp through together and the next burst only half a
/// second later: a record less than 0.01 s after the last refresh passes, and one from 0.01 to
/// 0.5 s after it is skipped.
class BurstThrottle {
public:
    bool Due(double t);

private:
    double _last = 0;
};

/// What one run of the I/O console sends: the editor's text and a line feed, and "out\n" unless
/// the text already has "out" in it, in any case.
std::string ConsoleMessage(const QString& text);
