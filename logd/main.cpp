// sondar-logd: logs a station's instruments into SQLite or PostgreSQL, unattended. See --help.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include "foundation/signalpipe.h"
#include "link/configdoc.h"
#include "link/connector.h"
#include "logd/stationlogger.h"
#include "logd/status.h"
#include "store/recorder.h"

namespace {

int fail(const std::string& message)
{
    std::cerr << "sondar-logd: " << message << std::endl;
    return 2;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("sondar-logd");
    QCoreApplication::setApplicationVersion(SONDAR_VERSION);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Logs every record of a station's instruments into SQLite or PostgreSQL, unattended: reconnects by\n"
        "itself, keeps rows in a spool on disk while the database is away, and prints a status line on\n"
        "standard error once a minute. SIGTERM or SIGINT commit what is pending and end it.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption instrument_option(
        "instrument", "Log the instrument NAME=MODEL@ADDRESS[:PORT] (repeatable).", "entry");
    const QCommandLineOption description_option(
        "description", "Log the <instruments> of the description file FILE.", "file");
    const QCommandLineOption browse_option("browse", "Log every instrument that DNS-SD announces.");
    const QCommandLineOption db_option(
        "db", "The store: sqlite:PATH or a postgresql:// URI (default sqlite:sondar.db).", "target", "sqlite:sondar.db");
    const QCommandLineOption records_option(
        "records", "The record names to keep, such as DATA,DATASTAT (default: every data, status, test and clock record).",
        "names");
    const QCommandLineOption batch_option(
        "batch-ms", "The longest a received record waits before it is committed (default 1000).", "ms", "1000");
    const QCommandLineOption spool_option(
        "spool", "Where rows wait while the database is away (default sondar-logd.spool).", "directory",
        "sondar-logd.spool");
    parser.addOptions({instrument_option, description_option, browse_option, db_option, records_option,
                       batch_option, spool_option});
    parser.process(application);
    if (!parser.positionalArguments().isEmpty())
        return fail("unexpected argument \"" + parser.positionalArguments().first().toStdString() + "\"");

    std::vector<NamedInstrument> instruments;
    for (const QString& entry : parser.values(instrument_option)) {
        try {
            instruments.push_back(NamedInstrument::Parse(entry.toStdString()));
        } catch (const NamedInstrument::Error& error) {
            std::cerr << "sondar-logd: skipping --instrument \"" << entry.toStdString() << "\": " << error.what()
                      << std::endl;
        }
    }
    if (parser.isSet(description_option)) {
        const std::string path = parser.value(description_option).toStdString();
        std::ifstream file(path);
        if (!file)
            return fail("cannot read " + path);
        ConfigDoc doc;
        std::ostringstream reply;
        doc.configure(file, reply);
        std::vector<std::string> errors;
        doc.GetInstruments(instruments, errors);
        for (const std::string& error : errors)
            std::cerr << "sondar-logd: " << path << ": skipping <instrument> " << error << std::endl;
    }
    if (instruments.empty() && !parser.isSet(browse_option))
        return fail("nothing to log: give --instrument, --description or --browse");

    bool ok = false;
    const int batch_ms = parser.value(batch_option).toInt(&ok);
    if (!ok || batch_ms < 1)
        return fail("--batch-ms wants a whole number of milliseconds, at least 1");
    std::set<std::string> records;
    for (const QString& name : parser.value(records_option).split(',', Qt::SkipEmptyParts))
        records.insert(name.trimmed().toUpper().toStdString());

    std::unique_ptr<Recorder> recorder;
    try {
        recorder = std::make_unique<Recorder>(Store::Open(parser.value(db_option).toStdString()),
                                              Spool(parser.value(spool_option).toStdString()),
                                              std::chrono::milliseconds(batch_ms));
    } catch (const std::exception& error) {
        return fail(error.what());
    }
    const int signal_fd = signal_pipe_for_quit();
    if (signal_fd < 0)
        return fail(std::strerror(errno));
    QSocketNotifier on_signal(signal_fd, QSocketNotifier::Read);
    QObject::connect(&on_signal, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    // No window: a link's failure is one line on standard error.
    Connector::SetMessageBox([](QWidget*, const QString& title, const QString& text) {
        std::cerr << "sondar-logd: " << title.toStdString() << ": " << text.toStdString() << std::endl;
    });

    StationLogger logger(*recorder, records);
    for (const NamedInstrument& instrument : instruments)
        if (!logger.Add(instrument))
            std::cerr << "sondar-logd: skipping a second instrument named \"" << instrument.name << "\"" << std::endl;
    if (parser.isSet(browse_option))
        logger.Browse();

    StatusLine status;
    auto report = [&] {
        std::cerr << "sondar-logd: " << status.Line(logger.Connected(), logger.Total(), recorder->TakeStats())
                  << std::endl;
    };
    QTimer every_minute;
    QObject::connect(&every_minute, &QTimer::timeout, report);
    every_minute.start(60000);

    const int result = application.exec();
    recorder->Stop();
    report();
    return result;
}
