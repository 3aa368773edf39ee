// sondar-logd under load: N simulated Tolvans at 40 Hz, one sondar-logd child writing into SQLite
// or PostgreSQL, measured from outside: its CPU time (wait4), rows per second and commit latency
// (its last status line), rows lost (gaps in each instrument's 25 ms record times in the store).
// Then the limit: the store's own time per row against a bare prepared-insert loop (SQLite) and a
// bare COPY (PostgreSQL) of the same rows.

#include "bench/logd_bench.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "bench/child.h"
#include "store/store.h"
#include "tests/store/database.h"

namespace {

constexpr int RATE_HZ = 40;

int free_port()
{
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    bind(fd, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
    close(fd);
    return ntohs(address.sin_port);
}

std::string temporary_directory()
{
    char pattern[] = "/tmp/sondar-logd-bench-XXXXXX";
    return mkdtemp(pattern);
}

struct Run {
    double cpu = 0, rows_per_second = 0, p50 = 0, p99 = 0;
    long long rows = 0, lost = 0;
    std::string error;
};

Run run_fleet(const LogdOptions& options, int n, const std::string& db, const std::string& directory)
{
    Run run;
    std::vector<std::unique_ptr<Child>> sims;
    std::vector<std::string> arguments{"--db", db, "--spool", directory + "/spool"};
    for (int i = 0; i < n; ++i) {
        const std::string port = std::to_string(free_port()), name = "b" + std::to_string(i);
        sims.push_back(std::make_unique<Child>(options.sim, std::vector<std::string>{"--model", "tolvan", "--name",
                                                                                     name, "--port", port, "--rate",
                                                                                     std::to_string(RATE_HZ)}));
        arguments.insert(arguments.end(), {"--instrument", name + "=tolvan@127.0.0.1:" + port});
    }
    const QDeadlineTimer deadline(60000);
    for (auto& sim : sims)
        if (!sim->WaitListening(deadline)) {
            run.error = "a simulator did not start";
            return run;
        }
    Child logd(options.logd, arguments, directory + "/logd.err");
    std::this_thread::sleep_for(std::chrono::duration<double>(options.seconds));  // the run itself
    double cpu_seconds = 0;
    if (logd.Stop(SIGTERM, cpu_seconds) != 0)
        run.error = "sondar-logd did not end with status 0";
    run.cpu = cpu_seconds / options.seconds;

    // Its last status line covers the whole run.
    std::ifstream errors(directory + "/logd.err");
    std::string status;
    for (std::string line; std::getline(errors, line);)
        if (line.find("rows/s") != std::string::npos)
            status = line;
    const std::string::size_type rate = status.find("connected, "), p50 = status.find("p50 ");
    if (rate == std::string::npos || p50 == std::string::npos)
        run.error = "no status line";
    else if (std::sscanf(status.c_str() + rate, "connected, %lf", &run.rows_per_second) != 1 ||
             std::sscanf(status.c_str() + p50, "p50 %lf s p99 %lf", &run.p50, &run.p99) != 2)
        run.error = "unreadable status line: " + status;

    for (const auto& row : query(db, "SELECT count(*), min(seconds + nanoseconds / 1e9), "
                                     "max(seconds + nanoseconds / 1e9) FROM tolvan_data GROUP BY instrument_id")) {
        const long long count = std::stoll(row[0]);
        run.rows += count;
        run.lost += std::llround((std::stod(row[2]) - std::stod(row[1])) * RATE_HZ) + 1 - count;
    }
    return run;
}

// A second's worth of Tolvan DATA rows of `instruments` instruments.
Batch tolvan_batch(int instruments)
{
    static const auto columns = std::make_shared<const std::vector<std::string>>(std::vector<std::string>{
        "msec", "seconds", "nanoseconds", "diag", "ch4d", "ch4", "temp", "pressure", "rssi", "droprate", "aux1",
        "aux2", "aux3", "aux4", "aux5", "aux6", "aux7", "aux8", "auxtc1", "auxtc2", "auxtc3"});
    Batch batch;
    const int64_t start = now_us();
    for (int i = 0; i < instruments; ++i)
        batch.instruments.push_back({"b" + std::to_string(i), "tolvan", "127.0.0.1", 4410});
    for (int k = 0; k < RATE_HZ; ++k)
        for (int i = 0; i < instruments; ++i) {
            Row row{"b" + std::to_string(i), "tolvan_data", columns, start + k * 25000, 1.8e9 + k * 0.025, {}};
            row.values = {std::to_string(k * 25), "1795622865", std::to_string(k * 25000000), "0", "0.08018",
                          "1.9161", "18.02", "101.297", "77.5", "0.33", "0.2508", "0.5003", "0.7493", "1.0004",
                          "1.2512", "1.4998", "1.7488", "1.9995", "18.65", "19.01", "19.61"};
            batch.rows.push_back(std::move(row));
        }
    return batch;
}

double cpu_now()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

double wall_now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Microseconds per row of ours and of the bare loop, each the best of seven, taken in turns so
// that both meet the same load; other work on the machine only ever adds.
template <class Ours, class Bare>
std::pair<double, double> per_row(size_t rows, double (*clock)(), Ours ours, Bare bare)
{
    double best_ours = 1e30, best_bare = 1e30;
    for (int i = 0; i < 7; ++i) {
        double start = clock();
        ours();
        best_ours = std::min(best_ours, (clock() - start) * 1e6 / double(rows));
        start = clock();
        bare();
        best_bare = std::min(best_bare, (clock() - start) * 1e6 / double(rows));
    }
    return {best_ours, best_bare};
}

// The cells of the batch as the store hands them to a database, made before any timing.
std::vector<std::vector<std::string>> cells_of(const Batch& batch)
{
    std::vector<std::vector<std::string>> cells;
    for (const Row& row : batch.rows) {
        cells.push_back({"1", utc_text(row.received_us), std::to_string(row.record_time)});
        cells.back().insert(cells.back().end(), row.values.begin(), row.values.end());
    }
    return cells;
}

void run_limits(const std::string& pg_uri)
{
    // The instruments go in with the first batch, as they do in the logger.
    const Batch first = tolvan_batch(100);
    Batch batch = first;
    batch.instruments.clear();
    const auto cells = cells_of(batch);
    std::string columns = "instrument_id, received_at, record_time";
    for (const std::string& column : *batch.rows[0].columns)
        columns += ", " + column;

    const std::string file = temporary_directory() + "/limit.db";
    auto sqlite_store = Store::Open("sqlite:" + file);
    sqlite_store->Write(first);  // the schema exists before timing
    sqlite3* db = nullptr;
    sqlite3_open(file.c_str(), &db);
    sqlite3_stmt* insert = nullptr;
    std::string marks = "?";
    for (size_t i = 1; i < cells[0].size(); ++i)
        marks += ", ?";
    sqlite3_prepare_v2(db, ("INSERT INTO tolvan_data (" + columns + ") VALUES (" + marks + ")").c_str(), -1, &insert,
                       nullptr);
    // In-process work: CPU time, which the disk's flush does not blur.
    const auto [sqlite_ours, sqlite_bare] = per_row(batch.rows.size(), cpu_now, [&] { sqlite_store->Write(batch); }, [&] {
        sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        for (const auto& row : cells) {
            for (size_t i = 0; i < row.size(); ++i)
                sqlite3_bind_text(insert, int(i + 1), row[i].data(), int(row[i].size()), SQLITE_STATIC);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    });
    sqlite3_finalize(insert);
    sqlite3_close(db);

    auto pg_store = Store::Open(pg_uri);
    pg_store->Write(first);
    std::string copy;
    for (const auto& row : cells)
        for (size_t i = 0; i < row.size(); ++i)
            copy += row[i] + (i + 1 < row.size() ? '\t' : '\n');
    PGconn* conn = PQconnectdb(pg_uri.c_str());
    // Most of the work is the server's: wall time.
    const auto [pg_ours, pg_bare] = per_row(batch.rows.size(), wall_now, [&] { pg_store->Write(batch); }, [&] {
        PQclear(PQexec(conn, "BEGIN"));
        PQclear(PQexec(conn, ("COPY tolvan_data (" + columns + ") FROM STDIN").c_str()));
        PQputCopyData(conn, copy.data(), int(copy.size()));
        PQputCopyEnd(conn, nullptr);
        while (PGresult* result = PQgetResult(conn))
            PQclear(result);
        PQclear(PQexec(conn, "COMMIT"));
    });
    PQfinish(conn);

    std::printf("\nThe store's limit: one transaction of %zu Tolvan DATA rows, time per row (best of 7)\n",
                batch.rows.size());
    std::printf("%-12s %14s %14s %8s\n", "store", "ours us/row", "bare us/row", "ratio");
    std::printf("%-12s %14.2f %14.2f %8.2f   (bare: prepared insert loop)\n", "SQLite CPU", sqlite_ours,
                sqlite_bare, sqlite_ours / sqlite_bare);
    std::printf("%-12s %14.2f %14.2f %8.2f   (bare: COPY)\n", "PG wall", pg_ours, pg_bare, pg_ours / pg_bare);
}

}  // namespace

void RunLogdBench(const LogdOptions& options)
{
    PgServer server;
    if (!server.ready) {
        std::printf("sondar-logd bench: no PostgreSQL server: %s\n", server.Log().c_str());
        return;
    }
    std::printf("\nsondar-logd: Tolvans at %d Hz, %.0f s a run, --batch-ms 1000\n", RATE_HZ, options.seconds);
    std::printf("%-11s %5s %10s %10s %10s %10s %8s %8s\n", "store", "N", "logd CPU", "rows/s", "rows", "lost",
                "p50 s", "p99 s");
    int database = 0;
    for (const char* kind : {"SQLite", "PostgreSQL"})
        for (int n : options.counts) {
            const std::string directory = temporary_directory();
            std::string db = "sqlite:" + directory + "/station.db";
            if (kind == std::string("PostgreSQL")) {
                const std::string name = "run" + std::to_string(++database);
                query(server.Uri(), "CREATE DATABASE " + name);
                db = server.Uri();
                db.replace(db.find("/postgres?"), 10, "/" + name + "?");
            }
            const Run run = run_fleet(options, n, db, directory);
            if (!run.error.empty())
                std::printf("%-11s %5d  %s\n", kind, n, run.error.c_str());
            else
                std::printf("%-11s %5d %9.1f%% %10.0f %10lld %10lld %8.2f %8.2f\n", kind, n, 100 * run.cpu,
                            run.rows_per_second, run.rows, run.lost, run.p50, run.p99);
            std::fflush(stdout);
            std::filesystem::remove_all(directory);
        }
    run_limits(server.Uri());
}
