#pragma once
// The status line that sondar-logd prints once a minute and when it ends.

#include <chrono>
#include <string>

#include "store/recorder.h"

class StatusLine {
public:
    /// "3 of 4 instruments connected, 160.0 rows/s, 0 rows in the spool, commit latency p50 0.52 s
    /// p99 1.01 s, last error: none", over the time since the last line (or the start).
    std::string Line(int connected, int total, Recorder::Stats stats);

private:
    std::chrono::steady_clock::time_point _since = std::chrono::steady_clock::now();
    std::string _last_error;
};
