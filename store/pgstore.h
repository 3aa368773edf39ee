#pragma once
// The store in a PostgreSQL database through libpq; rows go in by COPY. A lost connection is
// opened again at the next write.

#include <string>

#include "store/store.h"

struct pg_conn;

class PgStore : public Store {
public:
    /// `uri`: any libpq connection URI.
    explicit PgStore(std::string uri);
    ~PgStore() override;

protected:
    void _Connect() override;
    void _Recover() override;
    void _Execute(const std::string& sql) override;
    std::vector<std::string> _Query(const std::string& sql, const std::vector<std::string>& params) override;
    std::map<std::string, bool> _Columns(const std::string& table) override;
    std::string _TypeName(Type type) const override;
    void _Insert(const std::string& table, const std::vector<std::string>& columns,
                 const std::vector<std::string_view>& cells) override;

private:
    [[noreturn]] void _Fail(const std::string& what) const;

    std::string _uri;
    pg_conn* _conn = nullptr;
};
