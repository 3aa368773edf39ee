#pragma once
// Pairs of benchmarks whose time ratio the bench prints at the end, ours over the reference.

#include <string>
#include <vector>

struct Ratio {
    std::string label, ours, reference;
};

std::vector<Ratio>& ratios();

/// Registers a ratio at static initialisation; returns a dummy for `static const bool x = ...`.
inline bool RegisterRatio(const char* label, const char* ours, const char* reference)
{
    ratios().push_back({label, ours, reference});
    return true;
}
