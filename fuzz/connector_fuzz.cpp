// Any bytes as an instrument's stream, cut into lines and dispatched as the socket's slot does,
// into a fresh connector of every type in turn, logging to a file all the while.

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <string>

#include "link/connector.h"

namespace {

const char* const TYPES[] = {"tolvan", "morvik", "sarnel", "halden", "dravik", "quenta", "bremmel", "ostrel"};

// Hears everything, so that every notification path runs.
class Everything : public Connector::Listener {};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

// The first byte picks the type, the rest is the stream.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    Connector link(nullptr, "fuzz", TYPES[data[0] % 8]);
    Everything listener;
    for (const char* record : {"*H", "DATA", "DATASTAT", "DATADIAG", "DATATEST", "DATACLOCK", "DATAEVENT", "DATAR",
                               "DATAFLRAW", "DATAU", "DATAH"})
        link.RegisterListener(record, &listener);
    link.SetLogFileName("/dev/null");
    link.StartLoggingToFile();

    DelimParser framer;
    framer.AppendRawData(std::string(reinterpret_cast<const char*>(data + 1), size - 1));
    std::string line;
    while (framer.GetNextStringToEOL(line)) {
        if (line.empty())
            continue;
        if (line[0] == '<')
            link.HandleXML(line);
        else
            link.HandleData(line);
    }
    link.SetLogContinuous(false);
    link.LogDataNow();
    return 0;
}
