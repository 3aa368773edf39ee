#include "link/linkhealth.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace {

constexpr auto kRateWindow = std::chrono::seconds(10);

std::tm local(LinkClock::time_point when)
{
    const std::time_t t = LinkClock::to_time_t(when);
    std::tm broken{};
    localtime_r(&t, &broken);
    return broken;
}

std::string format(LinkClock::time_point when, const char* pattern)
{
    const std::tm broken = local(when);
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, pattern, &broken));
}

// A clock time, with its date when that is not today's.
std::string clock_text(LinkClock::time_point when, LinkClock::time_point now)
{
    const std::tm then = local(when), today = local(now);
    const bool same_day = then.tm_year == today.tm_year && then.tm_yday == today.tm_yday;
    return format(when, same_day ? "%H:%M:%S" : "%Y-%m-%d %H:%M:%S");
}

double seconds(LinkClock::duration span)
{
    return std::chrono::duration<double>(span).count();
}

}  // namespace

std::string LinkGapLine(LinkClock::time_point down, LinkClock::time_point up)
{
    const char* const iso = "%Y-%m-%dT%H:%M:%S";
    return "DATAEVENT\tLINKGAP\tlink down from " + format(down, iso) + " to " + format(up, iso) + "\n";
}

std::string AgeText(double seconds)
{
    const long s = long(std::floor(std::max(seconds, 0.0)));
    if (s < 60)
        return std::to_string(s) + " s";
    if (s < 3600)
        return std::to_string(s / 60) + " min " + std::to_string(s % 60) + " s";
    return std::to_string(s / 3600) + " h " + std::to_string(s % 3600 / 60) + " min";
}

LinkHealth::LinkHealth(LinkClock::time_point first_seen) : _first_seen(first_seen), _log_grew(first_seen) {}

LinkHealth::Figures LinkHealth::Read(const Reading& reading, LinkClock::time_point now, double threshold)
{
    const LinkCounters& counters = reading.counters;
    Figures figures;

    const bool was_lost = counters.down_since != LinkClock::time_point{};
    const std::string since = was_lost ? clock_text(counters.down_since, now) : "";
    switch (reading.socket) {
    case Socket::Connected:
        figures.state = "connected";
        break;
    case Socket::Connecting:
        figures.state = "connecting";
        break;
    case Socket::Idle:
        if (reading.redial_in >= 0)
            figures.state = "reconnecting in " + AgeText(std::ceil(reading.redial_in)) +
                            (was_lost ? " (down since " + since + ")" : "");
        else
            figures.state = was_lost ? "disconnected since " + since : "disconnected";
        break;
    }

    const double age = seconds(now - (counters.records ? counters.last_record : _first_seen));
    figures.age = counters.records ? AgeText(age) : "-";
    figures.stale = age > threshold;
    figures.alert = figures.stale && !_alerted;
    _alerted = figures.stale;

    // The oldest sample kept is the last one at or before the start of the window.
    _samples.emplace_back(now, counters.records);
    while (_samples.size() > 1 && _samples[1].first <= now - kRateWindow)
        _samples.pop_front();
    const double span = seconds(now - _samples.front().first);
    if (span > 0)
        figures.rate = double(counters.records - _samples.front().second) / span;

    if (reading.logging) {
        if (!_was_logging || counters.bytes_logged != _bytes)
            _log_grew = now;
        figures.log_stalled = seconds(now - _log_grew) > threshold;
    }
    _was_logging = reading.logging;
    _bytes = counters.bytes_logged;
    return figures;
}
