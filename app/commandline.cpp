#include "app/commandline.h"

#include <sstream>

CommandLine ParseCommandLine(const std::vector<std::string>& args)
{
    CommandLine result;
    if (args.size() < 3 || args[1] != "cal" || args[2].empty())
        return result;

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
