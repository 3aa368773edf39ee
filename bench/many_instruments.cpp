// Many instruments on one receiving process: N simulated Tolvans (one sondar-sim each, 40 records
// per second with waveforms), N Connectors in this process, and what they cost it: CPU time per
// second of stream and resident memory.

#include "bench/many_instruments.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include "bench/child.h"
#include "link/connector.h"

namespace {

constexpr int RATE_HZ = 40;

double cpu_seconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double resident_mb()
{
    std::ifstream statm("/proc/self/statm");
    long pages = 0, resident = 0;
    statm >> pages >> resident;
    return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

// Runs the event loop until `done` holds or `ms` pass; true if it holds.
template <class Done>
bool run_until(Done done, int ms)
{
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    while (!done()) {
        const qint64 left = ms - clock.elapsed();
        if (left <= 0)
            return false;
        QTimer::singleShot(int(std::min<qint64>(left, 50)), &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

struct RecordCounter : Connector::Listener {
    long records = 0;
    void GotConnectorData(Connector&, std::string) override { ++records; }
};

struct Row {
    int n = 0;
    double cpu_per_second = 0, records_per_second = 0, rss_mb = 0, rss_growth_mb = 0;
    std::string error;
};

class Fleet {
public:
    Fleet(const ManyOptions& options, int n) : _options(options), _n(n) {}

    ~Fleet() { _connectors.clear(); }

    Row Measure()
    {
        Row row;
        row.n = _n;
        const double rss_before = resident_mb();
        if (!_StartSims(row) || !_ConnectAll(row))
            return row;
        // Settle: opening queries answered, first headers in.
        run_until([] { return false; }, 1000);
        const long records_before = _Records();
        const double cpu_before = cpu_seconds();
        QElapsedTimer clock;
        clock.start();
        run_until([] { return false; }, int(_options.seconds * 1000));
        const double seconds = double(clock.elapsed()) / 1000.0;
        row.cpu_per_second = (cpu_seconds() - cpu_before) / seconds;
        row.records_per_second = double(_Records() - records_before) / seconds;
        row.rss_mb = resident_mb();
        row.rss_growth_mb = row.rss_mb - rss_before;
        return row;
    }

private:
    bool _StartSims(Row& row)
    {
        for (int i = 0; i < _n; ++i)
            _sims.push_back(std::make_unique<Child>(
                _options.sim, std::vector<std::string>{"--model", "tolvan", "--name", "many" + std::to_string(i),
                                                       "--port", std::to_string(_options.first_port + i), "--rate",
                                                       std::to_string(RATE_HZ)}));
        const QDeadlineTimer deadline(60000);
        for (auto& sim : _sims) {
            if (!sim->WaitListening(deadline)) {
                row.error = "a simulator did not start (port taken?)";
                return false;
            }
        }
        return true;
    }

    bool _ConnectAll(Row& row)
    {
        int connected = 0;
        for (int i = 0; i < _n; ++i) {
            auto connector = std::make_unique<Connector>(nullptr, "many" + std::to_string(i), "tolvan");
            QObject::connect(connector.get(), &Connector::Connected, [&connected] { ++connected; });
            connector->RegisterListener("many" + std::to_string(i) + ":DATA", &_counter);
            connector->Connect("127.0.0.1", 0, _options.first_port + i);
            _connectors.push_back(std::move(connector));
        }
        if (!run_until([&] { return connected == _n; }, 60000)) {
            row.error = "not every connector connected";
            return false;
        }
        return true;
    }

    long _Records() const { return _counter.records; }

    const ManyOptions& _options;
    int _n;
    std::vector<std::unique_ptr<Child>> _sims;
    RecordCounter _counter;
    std::vector<std::unique_ptr<Connector>> _connectors;
};

}  // namespace

void RunManyInstruments(const ManyOptions& options)
{
    int argc = 1;
    char name[] = "sondar_bench";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    Connector::SetMessageBox([](QWidget*, const QString& title, const QString& text) {
        std::fprintf(stderr, "%s: %s\n", title.toStdString().c_str(), text.toStdString().c_str());
    });

    std::printf("\nMany instruments: Tolvans at %d Hz with waveforms, %.0f s each, receiving process only\n",
                RATE_HZ, options.seconds);
    std::printf("%5s %12s %14s %12s %10s %12s\n", "N", "CPU/s", "CPU/s per inst", "records/s", "RSS MB",
                "RSS growth");
    for (int n : options.counts) {
        Row row;
        {
            Fleet fleet(options, n);
            row = fleet.Measure();
        }
        if (!row.error.empty()) {
            std::printf("%5d  %s\n", n, row.error.c_str());
            continue;
        }
        std::printf("%5d %11.1f%% %13.2f%% %12.0f %10.1f %12.1f\n", n, 100 * row.cpu_per_second,
                    100 * row.cpu_per_second / n, row.records_per_second, row.rss_mb, row.rss_growth_mb);
        std::fflush(stdout);
    }
}
