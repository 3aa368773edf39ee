#pragma once
// A database that the logger writes into: SQLite through its C library or PostgreSQL through
// libpq. Both keep one schema:
//
//   instruments (id, name unique, model, address, port)
//   <model>_<record> (instrument_id, received_at, record_time, one column per header field ...)
//   events (instrument_id, received_at, kind, text)
//
// received_at is UTC: timestamptz in PostgreSQL, ISO 8601 text with microseconds in SQLite. A
// field column is numeric (double precision, REAL) while every value it got was a number, text
// otherwise; a field that a later header adds becomes a new column. Tables and columns are made
// when the first row needs them.

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "store/batch.h"

class Store {
public:
    /// The database refused or could not be reached; the batch was not written, try again later.
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    /// "sqlite:PATH" or a libpq connection URI ("postgresql://…", "postgres://…"). Connects only
    /// when first written to. Throws Error for any other text.
    static std::unique_ptr<Store> Open(const std::string& target);

    virtual ~Store() = default;

    /// Writes the whole batch in one transaction, or nothing of it (then throws Error).
    void Write(const Batch& batch);

protected:
    enum class Type { Key, Integer, Real, Text, Time };

    /// `numbers_hold_text`: a numeric column takes text as it is (SQLite), rather than refuse it
    /// (then a column that gets text is altered to text).
    explicit Store(bool numbers_hold_text) : _numbers_hold_text(numbers_hold_text) {}

    /// Makes sure there is a connection; throws Error.
    virtual void _Connect() = 0;
    /// After a failed transaction: drop a connection that is gone.
    virtual void _Recover() = 0;
    virtual void _Begin() { _Execute("BEGIN"); }
    virtual void _Execute(const std::string& sql) = 0;
    /// The text of the first column of each result row; `params` bound to $1, $2 ….
    virtual std::vector<std::string> _Query(const std::string& sql, const std::vector<std::string>& params) = 0;
    /// Column name → numeric, of an existing table; empty when there is no such table.
    virtual std::map<std::string, bool> _Columns(const std::string& table) = 0;
    virtual std::string _TypeName(Type type) const = 0;
    /// Appends rows; `cells` holds columns.size() texts per row, "" for NULL.
    virtual void _Insert(const std::string& table, const std::vector<std::string>& columns,
                         const std::vector<std::string_view>& cells) = 0;

private:
    void _Transaction(const Batch& batch);
    void _MakeSchema();
    const std::string& _InstrumentId(const std::string& name);
    void _FitTable(const std::string& table, const std::vector<std::string>& columns, const std::vector<const Row*>& rows);
    std::map<std::string, bool>& _KnownColumns(const std::string& table);

    const bool _numbers_hold_text;
    bool _schema_made = false;
    std::map<std::string, std::map<std::string, bool>> _tables;
    std::map<std::string, std::string> _ids;
};

/// `name` as an SQL identifier: in double quotes, inner quotes doubled.
std::string quote_identifier(const std::string& name);
/// Whether the text is a decimal number (or inf, nan) that both databases read as a double.
bool is_number(const std::string& text);
