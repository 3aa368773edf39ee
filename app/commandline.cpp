#include "app/commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <sstream>
#include <type_traits>
#include <variant>

#include "app/myframe.h"

namespace {

// The options. Adding one is a row here and a field in CommandLine: a bool field makes a flag,
// a string field takes the last value given, a vector of strings every value.
using Field = std::variant<bool CommandLine::*, std::string CommandLine::*, std::vector<std::string> CommandLine::*>;
struct Option {
    const char* name;
    const char* value_name;  // empty for a flag
    const char* description;
    Field field;
};
const Option kOptions[] = {
    {"instrument", "NAME=MODEL@ADDRESS[:PORT]",
     "Lists the instrument NAME, a MODEL (tolvan, morvik, sarnel, halden, dravik, quenta, bremmel, ostrel) at "
     "ADDRESS, as if it were announced. An IPv6 address goes in brackets. Repeatable.",
     &CommandLine::instrument_entries},
    {"layout", "FILE", "Opens the watch windows and charts that the layout FILE keeps.", &CommandLine::layout},
    {"status", "", "Opens the station status window beside the list.", &CommandLine::status},
};

// A parser that knows the options, --help and --version and the positional form.
void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription("Finds the instruments on the local network and opens windows on them.\n"
                                     "With cal, opens the calibration panel of one Tolvan instead: it dials "
                                     "ADDRESS on PORT, or waits for NAME to be announced.");
    parser.addHelpOption();
    parser.addVersionOption();
    for (const Option& option : kOptions)
        parser.addOption(QCommandLineOption(option.name, option.description, option.value_name));
    parser.addPositionalArgument("cal", "The word cal and the instrument's service name.", "[cal NAME [ADDRESS PORT]]");
}

QStringList to_qt(const std::vector<std::string>& args)
{
    QStringList list;
    for (const std::string& arg : args)
        list << QString::fromStdString(arg);
    return list;
}

// Sets the options' fields; returns what could not be read.
std::vector<std::string> read_options(const std::vector<std::string>& args, CommandLine& result)
{
    std::vector<std::string> errors;
    if (args.empty())
        return errors;
    QCommandLineParser parser;
    describe(parser);
    const bool ok = parser.parse(to_qt(args));
    for (const Option& option : kOptions) {
        std::visit(
            [&](auto field) {
                using Value = std::remove_reference_t<decltype(result.*field)>;
                if constexpr (std::is_same_v<Value, bool>) {
                    result.*field = parser.isSet(option.name);
                } else if constexpr (std::is_same_v<Value, std::string>) {
                    result.*field = parser.value(option.name).toStdString();
                } else {
                    for (const QString& value : parser.values(option.name))
                        (result.*field).push_back(value.toStdString());
                }
            },
            option.field);
        // The parser tells a missing value only in its error text; this one says what must follow.
        if (!ok && *option.value_name && args.back() == std::string("--") + option.name)
            errors.push_back(std::string("--") + option.name + ": " + option.value_name + " must follow");
    }
    return errors;
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& args)
{
    CommandLine result;
    const std::vector<std::string> option_errors = read_options(args, result);
    if (args.size() < 3 || args[1] != "cal" || args[2].empty()) {
        result.errors = option_errors;
        for (const std::string& entry : result.instrument_entries) {
            try {
                result.instruments.push_back(NamedInstrument::Parse(entry));
            } catch (const NamedInstrument::Error& error) {
                result.errors.push_back("--instrument \"" + entry + "\": " + error.what());
            }
        }
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

void AnswerHelpOrVersion(int argc, char* argv[], const char* version)
{
    QCommandLineParser parser;
    describe(parser);
    parser.parse(to_qt(std::vector<std::string>(argv, argv + argc)));
    if (!parser.isSet("help") && !parser.isSet("help-all") && !parser.isSet("version"))
        return;
    // Help needs an application for the program's name, not the window system a QApplication wants.
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(version);
    parser.setApplicationDescription(parser.applicationDescription() + "\n\nDescription file: " +
                                     QString::fromStdString(MyFrame::DescriptionFilePath()));
    // Direct answers, so that the options of QApplication that this parser does not know stay
    // harmless; only --help-all, which lists Qt's options, goes through process().
    if (parser.isSet("version"))
        parser.showVersion();
    if (parser.isSet("help"))
        parser.showHelp();
    parser.process(application);
}
