#pragma once
// The databases of the store's and the logger's tests: a query that reads either store back, and
// a PostgreSQL 15 server of a test's own: a cluster made by initdb in a temporary directory,
// listening on a unix socket in that directory only (no TCP port), run as a user that is not
// root (as "nobody" when the test runs as root). Stopped and removed at the end.

#include <libpq-fe.h>
#include <pwd.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using Rows = std::vector<std::vector<std::string>>;

// A query's result as texts, NULL as ""; no rows when it fails.
inline Rows query(const std::string& target, const std::string& sql)
{
    Rows rows;
    if (target.compare(0, 7, "sqlite:") == 0) {
        sqlite3* db = nullptr;
        sqlite3_stmt* statement = nullptr;
        sqlite3_open(target.substr(7).c_str(), &db);
        sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr);
        while (statement && sqlite3_step(statement) == SQLITE_ROW) {
            rows.emplace_back();
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const unsigned char* text = sqlite3_column_text(statement, i);
                rows.back().emplace_back(text ? reinterpret_cast<const char*>(text) : "");
            }
        }
        sqlite3_finalize(statement);
        sqlite3_close(db);
        return rows;
    }
    PGconn* conn = PQconnectdb(target.c_str());
    PGresult* result = PQexec(conn, sql.c_str());
    for (int r = 0; r < PQntuples(result); ++r) {
        rows.emplace_back();
        for (int i = 0; i < PQnfields(result); ++i)
            rows.back().emplace_back(PQgetvalue(result, r, i));
    }
    PQclear(result);
    PQfinish(conn);
    return rows;
}

class PgServer {
public:
    static constexpr const char* BIN = "/usr/lib/postgresql/15/bin";

    PgServer()
    {
        if (!std::filesystem::exists(std::string(BIN) + "/pg_ctl")) {
            error = std::string(BIN) + "/pg_ctl is missing: scripts/install-deps installs the postgresql package";
            return;
        }
        char pattern[] = "/tmp/sondar-pg-XXXXXX";
        _dir = mkdtemp(pattern);
        if (getuid() == 0) {
            const passwd* nobody = getpwnam("nobody");
            if (!nobody || chown(_dir.c_str(), nobody->pw_uid, nobody->pw_gid) != 0) {
                error = "cannot hand " + _dir + " to the user nobody";
                return;
            }
            _as = "runuser -u nobody -- ";
        }
        ready = _Run("initdb -D " + _dir + "/data -U postgres --auth=trust --no-sync -E UTF8 --locale=C") && Start();
    }
    ~PgServer()
    {
        if (!_dir.empty()) {
            if (_started)
                _Run("pg_ctl -D " + _dir + "/data -m immediate -w stop");
            std::filesystem::remove_all(_dir);
        }
    }

    /// Starts the server and waits until it accepts connections.
    bool Start()
    {
        _started = _Run("pg_ctl -D " + _dir + "/data -l " + _dir + "/log -w -t 120 -o \"-c listen_addresses= -k " +
                        _dir + " -c fsync=off\" start");
        return _started;
    }
    /// Stops it as an administrator would for a restart: sessions are cut at once.
    bool Stop()
    {
        _started = !_Run("pg_ctl -D " + _dir + "/data -m fast -w -t 120 stop");
        return !_started;
    }

    /// The libpq URI of the database "postgres".
    std::string Uri() const { return "postgresql:///postgres?host=" + _dir + "&user=postgres"; }
    /// The server's log, for a failure's message.
    std::string Log() const
    {
        std::ifstream in(_dir + "/log");
        std::stringstream text;
        text << in.rdbuf();
        return error + text.str();
    }

    bool ready = false;
    std::string error;  ///< what failed, if anything

private:
    bool _Run(const std::string& command)
    {
        const std::string line = _as + BIN + "/" + command + " >>" + _dir + "/commands.log 2>&1";
        const bool ok = std::system(line.c_str()) == 0;
        if (!ok) {
            std::ifstream in(_dir + "/commands.log");
            std::stringstream text;
            text << in.rdbuf();
            error += line + " failed:\n" + text.str();
        }
        return ok;
    }

    std::string _dir;
    std::string _as;
    bool _started = false;
};
