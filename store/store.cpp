#include "store/store.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <strings.h>

#include "store/pgstore.h"
#include "store/sqlitestore.h"

int64_t now_us()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

std::string utc_text(int64_t us)
{
    // Rows come many to a second: the date and time of the last second are kept.
    thread_local std::time_t last = -1;
    thread_local char text[64];
    const std::time_t seconds = std::time_t(us / 1000000);
    if (seconds != last) {
        std::tm utc{};
        gmtime_r(&seconds, &utc);
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.", utc.tm_year + 1900, utc.tm_mon + 1,
                      utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
        last = seconds;
    }
    std::string result(text, 20);
    const int micro = int(us % 1000000);
    result.resize(26);
    for (int i = 25, rest = micro; i >= 20; --i, rest /= 10)
        result[size_t(i)] = char('0' + rest % 10);
    return result += 'Z';
}

std::string quote_identifier(const std::string& name)
{
    std::string quoted = "\"";
    for (char c : name)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

bool is_number(const std::string& text)
{
    // By syntax, which is all both databases ask: [+-] digits [. digits] [e [+-] digits], or inf,
    // infinity, nan in any case.
    const char* at = text.c_str();
    if (*at == '+' || *at == '-')
        ++at;
    if (strcasecmp(at, "inf") == 0 || strcasecmp(at, "infinity") == 0 || strcasecmp(at, "nan") == 0)
        return true;
    const auto digits = [&at] {
        const char* start = at;
        while (*at >= '0' && *at <= '9')
            ++at;
        return at - start;
    };
    long mantissa = digits();
    if (*at == '.') {
        ++at;
        mantissa += digits();
    }
    if (mantissa == 0)
        return false;
    if (*at == 'e' || *at == 'E') {
        ++at;
        if (*at == '+' || *at == '-')
            ++at;
        if (digits() == 0)
            return false;
    }
    return at == text.c_str() + text.size();
}

std::unique_ptr<Store> Store::Open(const std::string& target)
{
    if (target.compare(0, 7, "sqlite:") == 0 && target.size() > 7)
        return std::make_unique<SqliteStore>(target.substr(7));
    if (target.compare(0, 13, "postgresql://") == 0 || target.compare(0, 11, "postgres://") == 0)
        return std::make_unique<PgStore>(target);
    throw Error("\"" + target + "\" is neither sqlite:PATH nor a postgresql:// URI");
}

void Store::Write(const Batch& batch)
{
    try {
        _Connect();
        _Begin();
        _Transaction(batch);
        _Execute("COMMIT");
    } catch (const Error&) {
        // What this transaction made is gone with it: learn the schema and the ids again.
        _schema_made = false;
        _tables.clear();
        _ids.clear();
        try {
            _Execute("ROLLBACK");
        } catch (const Error&) {
        }
        _Recover();
        throw;
    }
}

void Store::_Transaction(const Batch& batch)
{
    if (!_schema_made)
        _MakeSchema();
    for (const InstrumentEntry& entry : batch.instruments)
        _ids[entry.name] = _Query("INSERT INTO instruments (name, model, address, port) VALUES ($1, $2, $3, $4) "
                                  "ON CONFLICT (name) DO UPDATE SET model = excluded.model, "
                                  "address = excluded.address, port = excluded.port RETURNING id",
                                  {entry.name, entry.model, entry.address, std::to_string(entry.port)})
                               .at(0);

    // Rows of one table and one header go in together, in the order they came.
    std::map<std::pair<std::string, const std::vector<std::string>*>, std::vector<const Row*>> groups;
    for (const Row& row : batch.rows)
        groups[{row.table, row.columns.get()}].push_back(&row);
    for (const auto& [key, rows] : groups) {
        const std::vector<std::string>& fields = *key.second;
        _FitTable(key.first, fields, rows);
        std::vector<std::string> columns{"instrument_id", "received_at", "record_time"};
        columns.insert(columns.end(), fields.begin(), fields.end());
        // The cells point into the rows and into `made`, the texts made here.
        std::vector<std::string> made;
        made.reserve(rows.size() * 2);
        std::vector<std::string_view> cells;
        cells.reserve(rows.size() * columns.size());
        char number[32];
        for (const Row* row : rows) {
            cells.push_back(_InstrumentId(row->instrument));
            cells.push_back(made.emplace_back(utc_text(row->received_us)));
            cells.push_back(made.emplace_back(number, std::to_chars(number, number + sizeof number, row->record_time).ptr));
            for (size_t i = 0; i < fields.size(); ++i)
                cells.push_back(i < row->values.size() ? std::string_view(row->values[i]) : std::string_view());
        }
        _Insert(key.first, columns, cells);
    }

    if (batch.events.empty())
        return;
    std::vector<std::string> times;
    times.reserve(batch.events.size());
    std::vector<std::string_view> cells;
    for (const Event& event : batch.events) {
        cells.push_back(event.instrument.empty() ? std::string_view() : _InstrumentId(event.instrument));
        cells.push_back(times.emplace_back(utc_text(event.received_us)));
        cells.push_back(event.kind);
        cells.push_back(event.text);
    }
    _Insert("events", {"instrument_id", "received_at", "kind", "text"}, cells);
}

void Store::_MakeSchema()
{
    _Execute("CREATE TABLE IF NOT EXISTS instruments (id " + _TypeName(Type::Key) + ", name " +
             _TypeName(Type::Text) + " NOT NULL UNIQUE, model " + _TypeName(Type::Text) + " NOT NULL, address " +
             _TypeName(Type::Text) + " NOT NULL, port " + _TypeName(Type::Integer) + " NOT NULL)");
    _Execute("CREATE TABLE IF NOT EXISTS events (instrument_id " + _TypeName(Type::Integer) +
             " REFERENCES instruments (id), received_at " + _TypeName(Type::Time) + " NOT NULL, kind " +
             _TypeName(Type::Text) + " NOT NULL, text " + _TypeName(Type::Text) + ")");
    _Execute("CREATE INDEX IF NOT EXISTS events_instrument_id_received_at ON events (instrument_id, received_at)");
    _schema_made = true;
}

const std::string& Store::_InstrumentId(const std::string& name)
{
    auto found = _ids.find(name);
    if (found != _ids.end())
        return found->second;
    const std::vector<std::string> ids = _Query("SELECT id FROM instruments WHERE name = $1", {name});
    if (ids.empty())
        throw Error("no instrument \"" + name + "\" in the database");
    return _ids[name] = ids[0];
}

std::map<std::string, bool>& Store::_KnownColumns(const std::string& table)
{
    auto found = _tables.find(table);
    return found != _tables.end() ? found->second : _tables[table] = _Columns(table);
}

void Store::_FitTable(const std::string& table, const std::vector<std::string>& fields,
                      const std::vector<const Row*>& rows)
{
    std::map<std::string, bool>& known = _KnownColumns(table);
    const std::string quoted = quote_identifier(table);
    if (known.empty()) {
        _Execute("CREATE TABLE " + quoted + " (instrument_id " + _TypeName(Type::Integer) +
                 " NOT NULL REFERENCES instruments (id), received_at " + _TypeName(Type::Time) +
                 " NOT NULL, record_time " + _TypeName(Type::Real) + ")");
        _Execute("CREATE INDEX " + quote_identifier(table + "_instrument_id_received_at") + " ON " + quoted +
                 " (instrument_id, received_at)");
        known = {{"instrument_id", false}, {"received_at", false}, {"record_time", true}};
    }
    for (size_t i = 0; i < fields.size(); ++i) {
        auto column = known.find(fields[i]);
        if (column != known.end() && (!column->second || _numbers_hold_text))
            continue;
        bool numeric = true;
        for (const Row* row : rows)
            if (i < row->values.size() && !row->values[i].empty() && !is_number(row->values[i])) {
                numeric = false;
                break;
            }
        if (column == known.end()) {
            _Execute("ALTER TABLE " + quoted + " ADD COLUMN " + quote_identifier(fields[i]) + " " +
                     _TypeName(numeric ? Type::Real : Type::Text));
            known[fields[i]] = numeric;
        } else if (!numeric) {
            _Execute("ALTER TABLE " + quoted + " ALTER COLUMN " + quote_identifier(fields[i]) + " TYPE " +
                     _TypeName(Type::Text));
            column->second = false;
        }
    }
}
