#include "store/sqlitestore.h"

#include <sqlite3.h>

// A REAL column keeps a text that is no number as text.
SqliteStore::SqliteStore(std::string path) : Store(true), _path(std::move(path)) {}

SqliteStore::~SqliteStore()
{
    for (auto& entry : _statements)
        sqlite3_finalize(entry.second);
    sqlite3_close(_db);
}

void SqliteStore::_Fail(const std::string& what) const
{
    throw Error(what + ": " + (_db ? sqlite3_errmsg(_db) : "out of memory"));
}

void SqliteStore::_Connect()
{
    if (_db)
        return;
    if (sqlite3_open_v2(_path.c_str(), &_db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) != SQLITE_OK) {
        const std::string message = "cannot open " + _path + ": " + (_db ? sqlite3_errmsg(_db) : "out of memory");
        sqlite3_close(_db);
        _db = nullptr;
        throw Error(message);
    }
    // Readers wait for a commit rather than fail; WAL lets them read while the logger writes.
    sqlite3_busy_timeout(_db, 5000);
    _Execute("PRAGMA journal_mode = WAL");
}

void SqliteStore::_Execute(const std::string& sql)
{
    if (!_db)
        throw Error("not connected");
    char* message = nullptr;
    if (sqlite3_exec(_db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        const std::string text = message ? message : "failed";
        sqlite3_free(message);
        throw Error(sql + ": " + text);
    }
}

sqlite3_stmt* SqliteStore::_Prepare(const std::string& sql)
{
    sqlite3_stmt*& statement = _statements[sql];
    if (!statement && sqlite3_prepare_v3(_db, sql.c_str(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement,
                                         nullptr) != SQLITE_OK) {
        _statements.erase(sql);
        _Fail(sql);
    }
    return statement;
}

std::vector<std::string> SqliteStore::_Query(const std::string& sql, const std::vector<std::string>& params)
{
    sqlite3_stmt* statement = _Prepare(sql);
    for (size_t i = 0; i < params.size(); ++i)
        sqlite3_bind_text(statement, int(i + 1), params[i].data(), int(params[i].size()), SQLITE_TRANSIENT);
    std::vector<std::string> result;
    int status;
    while ((status = sqlite3_step(statement)) == SQLITE_ROW) {
        const unsigned char* text = sqlite3_column_text(statement, 0);
        result.emplace_back(text ? reinterpret_cast<const char*>(text) : "");
    }
    sqlite3_reset(statement);
    if (status != SQLITE_DONE)
        _Fail(sql);
    return result;
}

std::map<std::string, bool> SqliteStore::_Columns(const std::string& table)
{
    std::map<std::string, bool> columns;
    sqlite3_stmt* statement = _Prepare("SELECT name, type FROM pragma_table_info($1)");
    sqlite3_bind_text(statement, 1, table.data(), int(table.size()), SQLITE_TRANSIENT);
    int status;
    while ((status = sqlite3_step(statement)) == SQLITE_ROW)
        columns[reinterpret_cast<const char*>(sqlite3_column_text(statement, 0))] =
            sqlite3_column_text(statement, 1) && std::string("REAL") ==
                reinterpret_cast<const char*>(sqlite3_column_text(statement, 1));
    sqlite3_reset(statement);
    if (status != SQLITE_DONE)
        _Fail(table);
    return columns;
}

std::string SqliteStore::_TypeName(Type type) const
{
    switch (type) {
    case Type::Key: return "INTEGER PRIMARY KEY";
    case Type::Integer: return "INTEGER";
    case Type::Real: return "REAL";
    case Type::Text:
    case Type::Time: break;
    }
    return "TEXT";
}

void SqliteStore::_Insert(const std::string& table, const std::vector<std::string>& columns,
                          const std::vector<std::string_view>& cells)
{
    std::string sql = "INSERT INTO " + quote_identifier(table) + " (";
    std::string values;
    for (size_t i = 0; i < columns.size(); ++i) {
        sql += (i ? ", " : "") + quote_identifier(columns[i]);
        values += i ? ", ?" : "?";
    }
    sqlite3_stmt* statement = _Prepare(sql + ") VALUES (" + values + ")");
    // Texts go in as they came; the columns' affinity makes numbers of numeric texts.
    for (size_t at = 0; at < cells.size(); at += columns.size()) {
        for (size_t i = 0; i < columns.size(); ++i) {
            const std::string_view cell = cells[at + i];
            if (cell.empty())
                sqlite3_bind_null(statement, int(i + 1));
            else
                sqlite3_bind_text(statement, int(i + 1), cell.data(), int(cell.size()), SQLITE_STATIC);
        }
        const int status = sqlite3_step(statement);
        sqlite3_reset(statement);
        if (status != SQLITE_DONE)
            _Fail("insert into " + table);
    }
}
