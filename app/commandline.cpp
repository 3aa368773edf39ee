#include "app/commandline.h"

#include <sstream>

namespace {

void read_main_arguments(const std::vector<std::string>& args, CommandLine& result)
{
    for (size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--layout") {
            if (++i == args.size())
                result.errors.push_back("--layout: FILE must follow");
            else
                result.layout = args[i];
            continue;
        }
        result.status = result.status || args[i] == "--status";
        if (args[i] != "--instrument")
            continue;
        if (++i == args.size()) {
            result.errors.push_back("--instrument: NAME=MODEL@ADDRESS[:PORT] must follow");
            return;
        }
        try {
            result.instruments.push_back(NamedInstrument::Parse(args[i]));
        } catch (const NamedInstrument::Error& error) {
            result.errors.push_back("--instrument \"" + args[i] + "\": " + error.what());
        }
    }
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& args)
{
    CommandLine result;
    if (args.size() < 3 || args[1] != "cal" || args[2].empty()) {
        read_main_arguments(args, result);
        return result;
    }

    result.mode = CommandLine::CAL_BROWSE;
    result.name = args[2];
    if (args.size() < 5 || args[3].empty())
        return result;

    std::istringstream port_text(args[4]);
    int port = 0;
    if (!(port_text >> port) || port == 0)
        return result;

    result.mode = CommandLine::CAL_DIAL;
    result.address = args[3];
    result.port = port;
    return result;
}
