#include "service/commands.h"

namespace {

std::string element(const std::string& name, const std::string& inner)
{
    return "<" + name + ">" + inner + "</" + name + ">";
}

std::string line(const std::string& model, const std::string& inner)
{
    return element("arvex", element(model, inner)) + "\n";
}

std::string cmd(const std::string& command)
{
    return element("cmd", element(command, "true"));
}

}  // namespace

std::string CommandLine(const std::string& model, const std::string& command)
{
    return line(model, cmd(command));
}

std::string FactoryCommandLine(const std::string& model, const std::string& command)
{
    return line(model, element("factory", cmd(command)));
}

std::string CalLine(const std::string& model, const std::string& setting, const std::string& text,
                    const std::string& command)
{
    return line(model, element("cal", element(setting, text)) + (command.empty() ? "" : cmd(command)));
}

std::string DravikSpanLine(const std::string& channel, int n, const std::string& gas)
{
    const std::string number = std::to_string(n);
    return CalLine("dravik", channel + "spanconc" + number, gas, channel + "span" + number);
}

std::string RebootLine(const std::string& type)
{
    return CommandLine(type == "sarnel" ? "morvik" : type, "reboot");
}
