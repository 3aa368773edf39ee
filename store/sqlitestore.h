#pragma once
// The store in one SQLite file, in WAL mode so that people may query it while the logger writes.

#include <map>
#include <string>

#include "store/store.h"

struct sqlite3;
struct sqlite3_stmt;

class SqliteStore : public Store {
public:
    explicit SqliteStore(std::string path);
    ~SqliteStore() override;

protected:
    void _Connect() override;
    void _Recover() override {}
    void _Begin() override { _Execute("BEGIN IMMEDIATE"); }
    void _Execute(const std::string& sql) override;
    std::vector<std::string> _Query(const std::string& sql, const std::vector<std::string>& params) override;
    std::map<std::string, bool> _Columns(const std::string& table) override;
    std::string _TypeName(Type type) const override;
    void _Insert(const std::string& table, const std::vector<std::string>& columns,
                 const std::vector<std::string_view>& cells) override;

private:
    [[noreturn]] void _Fail(const std::string& what) const;
    sqlite3_stmt* _Prepare(const std::string& sql);

    std::string _path;
    sqlite3* _db = nullptr;
    std::map<std::string, sqlite3_stmt*> _statements;
};
