#pragma once
// The logger's run of the bench binary: see logd_bench.cpp.

#include <string>
#include <vector>

struct LogdOptions {
    std::string sim, logd;  ///< the sondar-sim and sondar-logd executables
    double seconds = 20;    ///< each run's length
    std::vector<int> counts;  ///< simulated Tolvans per run; none: the run is skipped
};

/// Prints, for SQLite and PostgreSQL, one table row per count: sondar-logd's CPU share, rows per
/// second, rows lost and commit latency; then the store's time per row beside a bare insert loop
/// (SQLite) and a bare COPY (PostgreSQL). Starts and stops the simulators and a PostgreSQL server.
void RunLogdBench(const LogdOptions& options);
