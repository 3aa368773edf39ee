#pragma once
// The logger's writer: takes records as they arrive, and on a thread of its own commits them in
// one transaction per batch period. While the database cannot be reached, batches go to the
// spool, and once it answers again they are delivered first, in the order they came. Nothing that
// was handed over is dropped: a batch either is committed or waits in the spool; only while the
// spool cannot be written either are rows held in memory, two million at most (the oldest go).

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "store/batch.h"
#include "store/spool.h"
#include "store/store.h"

class Recorder {
public:
    /// What happened since the last TakeStats.
    struct Stats {
        uint64_t committed = 0;        ///< rows committed, replayed ones included
        uint64_t spooled = 0;          ///< rows waiting in the spool now
        std::string last_error;        ///< of the database or the spool; empty if none came
        std::vector<double> latencies;  ///< seconds from receipt to commit, one per committed row
    };

    /// A record waits at most `batch` (and the commit's own time) before it is committed.
    Recorder(std::unique_ptr<Store> store, Spool spool, std::chrono::milliseconds batch);
    /// Stops first.
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void Add(InstrumentEntry entry);
    void Add(Row row);
    void Add(Event event);

    /// Commits what is pending and ends the writer. When the database is known to be away, or
    /// the spool still holds batches, what is pending joins the spool at once instead, so that
    /// stopping never waits for a database.
    void Stop();

    Stats TakeStats();

private:
    void _Run();
    void _Deliver(Batch batch, bool last);
    void _Drain();
    void _Committed(const Batch& batch);
    void _Failed(const std::string& error);

    std::unique_ptr<Store> _store;
    Spool _spool;
    const std::chrono::milliseconds _batch;

    std::mutex _mutex;  // guards what follows, down to the thread
    std::condition_variable _wake;
    Batch _pending;
    std::chrono::steady_clock::time_point _oldest;
    bool _stopping = false;
    Stats _stats;
    bool _failing = false;
    uint64_t _replayed = 0;

    std::thread _thread;
};
