// sondar-sim: a simulated instrument.
//
//   sondar-sim --model MODEL --name NAME [--port P] [--listen ADDR] [--rate HZ] [--speed N] [--announce]
//
// serves a simulated instrument over TCP, by default on 127.0.0.1 at the port where clients look
// for the model, until SIGINT or SIGTERM: 4410 for a Tolvan, 4420 for a Morvik or Sarnel, 4440
// for a Dravik, 4450 for a Quenta, 4430 for a Halden, 50111 for a Bremmel and 4460 for an Ostrel.
// MODEL is one of tolvan, morvik, sarnel, dravik, quenta, halden, bremmel and ostrel. Once it
// listens it prints "listening on ADDRESS:PORT" on standard output. With --speed N (1 to 100) the
// instrument lives N times faster than the wall clock, so that a test can watch a wide laser sweep
// in minutes rather than hours.
//
// With --announce it also announces itself through DNS-SD as NAME of the type
// "_arvex-MODEL._tcp", and prints "announced NAME as TYPE" once the daemon has it. Without it, it
// announces nothing: a simulator must not advertise itself on a real network by accident. Without
// a running daemon it says so in one line on standard error and serves all the same.
//
//   sondar-sim --stdio --model MODEL
//
// serves one document of the model, kept across lines: each line of standard input is one
// message, and each gives exactly one line of output, the compact reply (empty when there is
// none). A line feed inside a reply is written as the two characters \n.
//
//   sondar-sim --dump-spectrum FILE
//
// writes the spectrum that a simulated Tolvan's waveforms are windows of: per line the laser
// temperature, the sample and the reference.
//
// Exit status: 0, 1 when the port or the file cannot be had, 2 for bad arguments.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QHostAddress>
#include <QSocketNotifier>

#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "foundation/signalpipe.h"
#include "sim/served_document.h"
#include "sim/sim_announcer.h"
#include "sim/sim_instrument.h"
#include "sim/sim_server.h"
#include "sim/spectrum.h"

namespace {

const char* const kSynopsis =
    "usage: sondar-sim --model MODEL --name NAME [--port P] [--listen ADDR] [--rate HZ] [--speed N]\n"
    "                  [--announce]\n"
    "       sondar-sim --stdio --model MODEL\n"
    "       sondar-sim --dump-spectrum FILE\n"
    "MODEL: tolvan, morvik, sarnel, dravik, quenta, halden, bremmel or ostrel\n";

int usage()
{
    std::cerr << kSynopsis;
    return 2;
}

std::string one_line(const std::string& reply)
{
    std::string line;
    line.reserve(reply.size());
    for (char c : reply) {
        if (c == '\n')
            line += "\\n";
        else
            line += c;
    }
    return line;
}

// A whole decimal number in [low, high], or -1.
long number_in(const std::string& text, long low, long high)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos || text.size() > 9)
        return -1;
    const long value = std::stol(text);
    return value >= low && value <= high ? value : -1;
}

int run_stdio(const std::string& model)
{
    auto document = ServedDocument::Make(model);
    if (!document) {
        std::cerr << "sondar-sim: unknown model \"" << model << "\"\n";
        return usage();
    }
    std::ios::sync_with_stdio(false);
    std::string line;
    while (std::getline(std::cin, line)) {
        std::string reply;
        try {
            reply = document->Serve(line);
        } catch (const std::exception& e) {
            // A value refused by exception must not end the instrument, nor cost the line.
            std::cerr << "sondar-sim: " << e.what() << '\n';
        }
        std::cout << one_line(reply) << '\n';
        std::cout.flush();
    }
    return 0;
}

int dump_spectrum(const std::string& path)
{
    std::ofstream out(path);
    SimSpectrum::Dump(out);
    out.close();
    if (!out) {
        std::cerr << "sondar-sim: cannot write " << path << '\n';
        return 1;
    }
    return 0;
}

// SIGINT and SIGTERM end the event loop.
bool quit_on_signals(QCoreApplication& application)
{
    const int fd = signal_pipe_for_quit();
    if (fd < 0)
        return false;
    auto* notifier = new QSocketNotifier(fd, QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return true;
}

int run_server(QCoreApplication& application, std::map<std::string, std::string>& options)
{
    const std::string model = options["--model"];
    auto instrument = SimInstrument::Make(model, options["--name"]);
    if (!instrument) {
        std::cerr << "sondar-sim: unknown model \"" << model << "\"\n";
        return usage();
    }
    long port = instrument->DefaultPort();
    if (options.count("--port") && (port = number_in(options["--port"], 1, 65535)) < 0) {
        std::cerr << "sondar-sim: --port wants a port number from 1 to 65535\n";
        return usage();
    }
    QHostAddress address(QHostAddress::LocalHost);
    if (options.count("--listen") && !address.setAddress(QString::fromStdString(options["--listen"]))) {
        std::cerr << "sondar-sim: --listen wants an IP address\n";
        return usage();
    }
    if (options.count("--rate") && !instrument->SetRate(int(number_in(options["--rate"], 0, 1000)))) {
        std::cerr << "sondar-sim: a " << model << " has no rate " << options["--rate"] << '\n';
        return usage();
    }

    long speed = 1;
    if (options.count("--speed") && (speed = number_in(options["--speed"], 1, 100)) < 0) {
        std::cerr << "sondar-sim: --speed wants a whole number from 1 to 100\n";
        return usage();
    }

    if (!quit_on_signals(application)) {
        std::cerr << "sondar-sim: " << std::strerror(errno) << '\n';
        return 1;
    }
    SimServer server(*instrument, int(speed));
    QString error;
    if (!server.Listen(address, quint16(port), error)) {
        std::cerr << "sondar-sim: cannot listen on " << address.toString().toStdString() << ":" << port << ": "
                  << error.toStdString() << '\n';
        return 1;
    }
    const QString host = address.protocol() == QAbstractSocket::IPv6Protocol ? "[" + address.toString() + "]"
                                                                             : address.toString();
    std::cout << "listening on " << host.toStdString() << ":" << port << std::endl;
    std::unique_ptr<SimAnnouncer> announcer;
    if (options.count("--announce"))
        announcer = std::make_unique<SimAnnouncer>(model, options["--name"], int(port));
    return application.exec();
}

}  // namespace

int main(int argc, char** argv)
{
    static const struct {
        const char* name;
        const char* value_name;  // empty for a flag
        const char* description;
    } kOptions[] = {
        {"model", "MODEL", "The model to simulate."},
        {"name", "NAME", "The instrument's name."},
        {"port", "P", "The port to listen on; by default the one where clients look for the model."},
        {"listen", "ADDR", "The address to listen on; by default 127.0.0.1."},
        {"rate", "HZ", "The data rate, one the model offers."},
        {"speed", "N", "Lives N (1 to 100) times faster than the wall clock."},
        {"announce", "", "Announces the instrument through DNS-SD as NAME of the type _arvex-MODEL._tcp."},
        {"stdio", "", "Serves one document of MODEL on standard input and output, one message a line."},
        {"dump-spectrum", "FILE", "Writes the spectrum of a simulated Tolvan's waveforms to FILE."},
    };
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(SONDAR_VERSION);
    QCommandLineParser parser;
    parser.setApplicationDescription(QString("A simulated instrument.\n\n") + kSynopsis +
                                     "\nExit status: 0, 1 when the port or the file cannot be had, 2 for bad "
                                     "arguments.");
    parser.addHelpOption();
    parser.addVersionOption();
    for (const auto& option : kOptions)
        parser.addOption(QCommandLineOption(option.name, option.description, option.value_name));
    if (!parser.parse(QCoreApplication::arguments())) {
        std::cerr << "sondar-sim: " << parser.errorText().toStdString() << '\n';
        return usage();
    }
    parser.process(application);  // answers --help and --version
    if (!parser.positionalArguments().isEmpty())
        return usage();

    // Each option at most once; the options' names are found in the order given, repeats included.
    std::map<std::string, std::string> options;
    for (const QString& name : parser.optionNames()) {
        const std::string key = "--" + name.toStdString();
        if (options.count(key))
            return usage();
        options[key] = parser.value(name).toStdString();
    }

    if (options.count("--dump-spectrum"))
        return options.size() == 1 ? dump_spectrum(options["--dump-spectrum"]) : usage();
    if (options.count("--stdio"))
        return options.size() == 2 && options.count("--model") ? run_stdio(options["--model"]) : usage();
    if (!options.count("--model") || !options.count("--name"))
        return usage();
    return run_server(application, options);
}
