#pragma once
// Whether a link is alive, told plainly: the figures a connector keeps of its stream as records
// arrive, and how a watcher turns periodic readings of them into what a person reads (the state,
// the age of the last record, the recent rate, a stalled log, an alarm once per outage). No Qt:
// the clock is whatever the caller says it is.

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <utility>

using LinkClock = std::chrono::system_clock;

/// What a connector has seen of its link. The connector updates it; others only read it.
struct LinkCounters {
    LinkClock::time_point last_record{};  ///< when the socket brought the latest record; the epoch before any
    uint64_t records = 0;                 ///< record lines taken (good sum where there is one)
    uint64_t bad_lines = 0;               ///< data lines dropped for a bad checksum
    uint64_t bytes_logged = 0;            ///< bytes written to the log file since it was opened
    unsigned connections = 0;             ///< times the link came up
    LinkClock::time_point down_since{};   ///< when the link last went down; the epoch if it never did
};

/// The event line that marks a gap in a log file, from the link going down to its coming up again:
/// "DATAEVENT\tLINKGAP\tlink down from 2026-11-25T16:30:05 to 2026-11-25T16:30:12\n" (local time).
/// Readers of data records pass over it as over any event.
std::string LinkGapLine(LinkClock::time_point down, LinkClock::time_point up);

/// Seconds as a person reads an age: "4 s", "2 min 5 s", "3 h 12 min".
std::string AgeText(double seconds);

/// The figures of one link, from readings taken about once a second.
class LinkHealth {
public:
    enum class Socket { Connected, Connecting, Idle };

    struct Reading {
        Socket socket = Socket::Idle;
        LinkCounters counters;
        bool logging = false;  ///< a log file is open and takes the stream as it comes
        double redial_in = -1;  ///< seconds until a planned redial; negative when none
    };

    struct Figures {
        /// "connected", "connecting", "disconnected since 16:30:05" (just "disconnected" for a link
        /// that never came up), or "reconnecting in 4 s (down since 16:30:05)".
        std::string state;
        std::string age;     ///< of the last record, AgeText; "-" before the first
        double rate = 0;     ///< records per second over the last 10 s
        bool stale = false;  ///< no record for longer than the threshold: show it in red
        bool alert = false;  ///< stale, and not yet told in this outage: tell the user now
        bool log_stalled = false;  ///< the log file has not grown for longer than the threshold
    };

    /// A link first read at `first_seen`; before its first record, its age counts from then.
    explicit LinkHealth(LinkClock::time_point first_seen);

    /// The figures at `now`; `threshold` is the age in seconds above which the link is stale. An
    /// outage ends with the next record, and the one after it is told again.
    Figures Read(const Reading& reading, LinkClock::time_point now, double threshold);

private:
    std::deque<std::pair<LinkClock::time_point, uint64_t>> _samples;  // (time, records), last 10 s
    LinkClock::time_point _first_seen;
    LinkClock::time_point _log_grew;
    uint64_t _bytes = 0;
    bool _was_logging = false;
    bool _alerted = false;
};
