#pragma once
// The many-instruments run of the bench binary: see many_instruments.cpp.

#include <string>
#include <vector>

struct ManyOptions {
    std::string sim;                    ///< the sondar-sim executable
    int first_port = 31000;             ///< simulator i listens on first_port + i
    double seconds = 5;                 ///< measured stream time per row
    std::vector<int> counts{1, 10, 50, 100};
};

/// Prints one table row per count: the receiving process's CPU time per second of stream and its
/// memory. Starts and always stops the simulators itself.
void RunManyInstruments(const ManyOptions& options);
