#include "store/recorder.h"

#include <algorithm>

namespace {

// What is held in memory while neither the database nor the spool takes it: minutes of a large site.
constexpr size_t MAX_HELD_ROWS = 2000000;

}  // namespace

Recorder::Recorder(std::unique_ptr<Store> store, Spool spool, std::chrono::milliseconds batch)
    : _store(std::move(store)), _spool(std::move(spool)), _batch(batch)
{
    _stats.spooled = _spool.Rows();
    _thread = std::thread(&Recorder::_Run, this);
}

Recorder::~Recorder()
{
    Stop();
}

void Recorder::Stop()
{
    {
        std::lock_guard<std::mutex> lock(_mutex);
        _stopping = true;
    }
    _wake.notify_one();
    if (_thread.joinable())
        _thread.join();
}

template <class T>
static void add_to(std::vector<T>& list, T item, const Batch& pending, std::chrono::steady_clock::time_point& oldest,
                   std::condition_variable& wake)
{
    if (pending.Empty()) {
        oldest = std::chrono::steady_clock::now();
        wake.notify_one();
    }
    list.push_back(std::move(item));
}

void Recorder::Add(InstrumentEntry entry)
{
    std::lock_guard<std::mutex> lock(_mutex);
    add_to(_pending.instruments, std::move(entry), _pending, _oldest, _wake);
}

void Recorder::Add(Row row)
{
    std::lock_guard<std::mutex> lock(_mutex);
    add_to(_pending.rows, std::move(row), _pending, _oldest, _wake);
}

void Recorder::Add(Event event)
{
    std::lock_guard<std::mutex> lock(_mutex);
    add_to(_pending.events, std::move(event), _pending, _oldest, _wake);
}

Recorder::Stats Recorder::TakeStats()
{
    std::lock_guard<std::mutex> lock(_mutex);
    Stats taken = std::move(_stats);
    _stats = Stats();
    _stats.spooled = taken.spooled;
    return taken;
}

void Recorder::_Run()
{
    std::unique_lock<std::mutex> lock(_mutex);
    for (;;) {
        const bool last = _stopping;
        if (!last) {
            const auto now = std::chrono::steady_clock::now();
            // With nothing pending, a spool that waits is tried again once a period.
            const auto due = !_pending.Empty() ? _oldest + _batch
                             : !_spool.Empty() ? now + _batch
                                               : std::chrono::steady_clock::time_point::max();
            if (now < due) {
                if (due == std::chrono::steady_clock::time_point::max())
                    _wake.wait(lock);
                else
                    _wake.wait_until(lock, due);
                continue;
            }
        }
        Batch batch = std::move(_pending);
        _pending = Batch();
        lock.unlock();
        _Deliver(std::move(batch), last);
        if (last)
            return;
        lock.lock();
    }
}

void Recorder::_Deliver(Batch batch, bool last)
{
    if (_spool.Empty() && !(last && _failing)) {
        if (batch.Empty())
            return;
        try {
            _store->Write(batch);
            _Committed(batch);
            return;
        } catch (const Store::Error& error) {
            _Failed(error.what());
            batch.events.push_back({"", now_us(), "spooled",
                                    std::string("the database cannot be reached, rows wait in the spool: ") +
                                        error.what()});
        }
    }
    try {
        if (!batch.Empty())
            _spool.Push(batch);
    } catch (const Spool::Error& error) {
        // Neither the database nor the disk takes it: it stays in memory for the next period, up
        // to a bound, beyond which the oldest rows go (and say so).
        std::string message = error.what();
        const size_t over = batch.rows.size() + _pending.rows.size() > MAX_HELD_ROWS
                                ? std::min(batch.rows.size(), batch.rows.size() + _pending.rows.size() - MAX_HELD_ROWS)
                                : 0;
        if (over > 0)
            message += "; " + std::to_string(over) + " rows dropped";
        _Failed(message);
        std::lock_guard<std::mutex> lock(_mutex);
        _pending.instruments.insert(_pending.instruments.begin(), batch.instruments.begin(), batch.instruments.end());
        _pending.rows.insert(_pending.rows.begin(), batch.rows.begin() + std::ptrdiff_t(over), batch.rows.end());
        _pending.events.insert(_pending.events.begin(), batch.events.begin(), batch.events.end());
        _oldest = std::chrono::steady_clock::now();
        return;
    }
    {
        std::lock_guard<std::mutex> lock(_mutex);
        _stats.spooled = _spool.Rows();
    }
    if (!last)
        _Drain();
}

void Recorder::_Drain()
{
    while (!_spool.Empty()) {
        try {
            Batch batch = _spool.Front();
            const uint64_t replayed = _replayed + batch.rows.size();
            if (_spool.Batches() == 1)
                batch.events.push_back({"", now_us(), "replayed",
                                        std::to_string(replayed) + " rows delivered from the spool"});
            _store->Write(batch);
            _spool.Pop();
            _replayed = replayed;
            _Committed(batch);
        } catch (const std::exception& error) {
            _Failed(error.what());
            return;
        }
    }
    _replayed = 0;
}

void Recorder::_Committed(const Batch& batch)
{
    const int64_t now = now_us();
    std::lock_guard<std::mutex> lock(_mutex);
    _failing = false;
    _stats.committed += batch.rows.size();
    _stats.spooled = _spool.Rows();
    // Bounded: a status period at a large site keeps at most a few million.
    if (_stats.latencies.size() < 4000000)
        for (const Row& row : batch.rows)
            _stats.latencies.push_back((now - row.received_us) / 1e6);
}

void Recorder::_Failed(const std::string& error)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _failing = true;
    _stats.last_error = error;
    _stats.spooled = _spool.Rows();
}
