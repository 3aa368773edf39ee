// The stores against real databases: a SQLite file and a PostgreSQL server of the test's own.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "store/recorder.h"
#include "store/store.h"
#include "tests/store/database.h"

namespace {

std::filesystem::path temporary(const std::string& name)
{
    const auto path = std::filesystem::temp_directory_path() /
                      ("sondar-store-" + std::to_string(getpid()) + "-" + name);
    std::filesystem::remove_all(path);
    return path;
}

// Polls a condition of another thread, for a minute at most.
bool wait_until(const std::function<bool()>& done)
{
    for (auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60); !done();) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

Row row(const std::vector<std::string>& columns, std::vector<std::string> values, int64_t us)
{
    static std::map<std::vector<std::string>, std::shared_ptr<const std::vector<std::string>>> shared;
    auto& names = shared[columns];
    if (!names)
        names = std::make_shared<const std::vector<std::string>>(columns);
    return Row{"t1", "tolvan_data", names, us, double(us) / 1e6, std::move(values)};
}

class StoreTest : public testing::TestWithParam<std::string> {
protected:
    static void SetUpTestSuite() { server = new PgServer; }
    static void TearDownTestSuite() { delete server; }
    static PgServer* server;
};
PgServer* StoreTest::server = nullptr;

}  // namespace

// Columns follow the headers: new fields become new columns, a number column that gets text
// becomes text (PostgreSQL) or keeps it as text (SQLite), empty values are NULL, the instrument is
// updated in place.
TEST_P(StoreTest, SchemaFollowsTheHeaders)
{
    const bool sqlite = GetParam() == "sqlite";
    ASSERT_TRUE(sqlite || server->ready) << server->Log();
    const std::string target = sqlite ? "sqlite:" + temporary("schema.db").string() : server->Uri();
    const int64_t t0 = 1764000000123456;
    auto store = Store::Open(target);

    Batch first;
    first.instruments.push_back({"t1", "tolvan", "127.0.0.1", 4410});
    first.rows.push_back(row({"seconds", "ch4", "mode"}, {"10", "1.5", "auto"}, t0));
    first.rows.push_back(row({"seconds", "ch4", "mode"}, {"11", "", "auto"}, t0 + 1));
    first.events.push_back({"t1", t0, "connected", "127.0.0.1:4410"});
    store->Write(first);
    Batch second;
    second.instruments.push_back({"t1", "tolvan", "10.0.0.5", 4411});
    second.rows.push_back(row({"seconds", "ch4", "mode", "extra"}, {"12", "high", "x", "0.5"}, t0 + 2));
    second.events.push_back({"", t0 + 3, "spooled", "why"});
    store->Write(second);

    EXPECT_EQ(query(target, "SELECT id, name, model, address, port FROM instruments"),
              (Rows{{"1", "t1", "tolvan", "10.0.0.5", "4411"}}));
    const std::string columns = sqlite ? "SELECT name, type FROM pragma_table_info('tolvan_data')"
                                       : "SELECT attname, format_type(atttypid, atttypmod) FROM pg_attribute "
                                         "WHERE attrelid = 'tolvan_data'::regclass AND attnum > 0 ORDER BY attnum";
    const std::string real = sqlite ? "REAL" : "double precision", text = sqlite ? "TEXT" : "text";
    EXPECT_EQ(query(target, columns), (Rows{{"instrument_id", sqlite ? "INTEGER" : "integer"},
                                            {"received_at", sqlite ? "TEXT" : "timestamp with time zone"},
                                            {"record_time", real},
                                            {"seconds", real},
                                            {"ch4", sqlite ? real : text},
                                            {"mode", text},
                                            {"extra", real}}));
    const std::string utc = sqlite ? "received_at"
                                   : "to_char(received_at AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS.US\"Z\"')";
    EXPECT_EQ(query(target, "SELECT instrument_id, " + utc +
                                ", CAST(seconds AS integer), ch4, mode, CAST(extra * 2 AS integer) IS NULL "
                                "FROM tolvan_data ORDER BY seconds"),
              (Rows{{"1", utc_text(t0), "10", "1.5", "auto", sqlite ? "1" : "t"},
                    {"1", utc_text(t0 + 1), "11", "", "auto", sqlite ? "1" : "t"},
                    {"1", utc_text(t0 + 2), "12", "high", "x", sqlite ? "0" : "f"}}));
    EXPECT_EQ(query(target, "SELECT coalesce(CAST(instrument_id AS text), '-'), kind, text FROM events"),
              (Rows{{"1", "connected", "127.0.0.1:4410"}, {"-", "spooled", "why"}}));
}

INSTANTIATE_TEST_SUITE_P(Both, StoreTest, testing::Values("sqlite", "postgresql"));

// Batches that a database cannot take wait in the spool, also across a restart of the logger, and
// go in first, in order, once a database answers.
TEST(RecorderTest, SpoolOutlivesTheLoggerAndIsDeliveredInOrder)
{
    const auto spool = temporary("spool"), db = temporary("late.db");
    const auto columns = std::vector<std::string>{"seconds"};
    {
        Recorder away(Store::Open("postgresql:///postgres?host=/nonexistent-sondar-dir"), Spool(spool.string()),
                      std::chrono::milliseconds(10));
        away.Add(InstrumentEntry{"t1", "tolvan", "127.0.0.1", 4410});
        for (int i = 1; i <= 3; ++i)
            away.Add(row(columns, {std::to_string(i)}, i));
        ASSERT_TRUE(wait_until([&] { return away.TakeStats().spooled == 3; }));
    }
    EXPECT_EQ(Spool(spool.string()).Rows(), 3u);

    Recorder back(Store::Open("sqlite:" + db.string()), Spool(spool.string()), std::chrono::milliseconds(10));
    back.Add(row(columns, {"4"}, 4));
    uint64_t committed = 0;
    EXPECT_TRUE(wait_until([&] { return (committed += back.TakeStats().committed) == 4; }));
    back.Stop();
    EXPECT_EQ(query("sqlite:" + db.string(), "SELECT CAST(seconds AS integer) FROM tolvan_data ORDER BY rowid"),
              (Rows{{"1"}, {"2"}, {"3"}, {"4"}}));
    EXPECT_EQ(query("sqlite:" + db.string(), "SELECT kind FROM events"), (Rows{{"spooled"}, {"replayed"}}));
    EXPECT_TRUE(Spool(spool.string()).Empty());
}
