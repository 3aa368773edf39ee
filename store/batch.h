#pragma once
// What the logger hands to a store: instruments, received records and events, gathered over one
// batch period and written in one transaction.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// One row of the table `instruments`, keyed by name.
struct InstrumentEntry {
    std::string name;
    std::string model;  ///< the type word: "tolvan"
    std::string address;
    int port = 0;
};

/// One received record: a row of the table `table` ("tolvan_data"). `values[i]` is the text of
/// the field `(*columns)[i]`; an empty text is stored as NULL.
struct Row {
    std::string instrument;  ///< the instrument's name; its entry came in this or an earlier batch
    std::string table;
    std::shared_ptr<const std::vector<std::string>> columns;  ///< lower case, shared by the rows of one header
    int64_t received_us = 0;  ///< microseconds since 1970-01-01 UTC
    double record_time = 0;
    std::vector<std::string> values;
};

/// One row of the table `events`.
struct Event {
    std::string instrument;  ///< empty for the logger's own events (spooled, replayed)
    int64_t received_us = 0;
    std::string kind;  ///< "connected", "disconnected", "event", "spooled" or "replayed"
    std::string text;
};

struct Batch {
    std::vector<InstrumentEntry> instruments;
    std::vector<Row> rows;
    std::vector<Event> events;

    bool Empty() const { return instruments.empty() && rows.empty() && events.empty(); }
};

/// Microseconds since 1970-01-01 UTC, now.
int64_t now_us();
/// "2026-03-09T14:05:01.123456Z".
std::string utc_text(int64_t us);
