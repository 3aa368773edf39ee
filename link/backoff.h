#pragma once
// The pace of redialing a lost link: the first wait, then twice as long each time, up to a cap.

#include <algorithm>

class Backoff {
public:
    /// Waits of `first` seconds, doubling up to `cap` seconds: 1, 2, 4, 8, 16, 30, 30 … by default.
    explicit Backoff(double first = 1, double cap = 30) : _first(first), _cap(cap), _next(first) {}

    /// The wait before the next attempt; each call doubles the one after it.
    double Next()
    {
        const double wait = _next;
        _next = std::min(_next * 2, _cap);
        return wait;
    }
    /// After a success: the next wait is the first again.
    void Reset() { _next = _first; }

private:
    double _first, _cap, _next;
};
