// sondar-cli: every instrument from a terminal and from scripts.
//
//   sondar-cli [--timeout S] COMMAND [ARGUMENTS] [OPTIONS]
//
// COMMAND is list, get, set, stream, save, restore or capture; "sondar-cli COMMAND --help" tells
// more. A TARGET is the name an instrument announces through DNS-SD, or NAME=MODEL@ADDRESS[:PORT]
// or MODEL@ADDRESS[:PORT]. Exit status: 0 done, 1 the instrument refused or could not be reached
// in time, 2 bad usage.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTimer>

#include <iostream>
#include <map>

#include "cli/commands.h"
#include "cli/session.h"

namespace {

struct Command {
    const char* summary;
    const char* arguments;  // for the usage line
    std::vector<QCommandLineOption> options;
};

const QCommandLineOption kJson("json", "Print JSON.");
const QCommandLineOption kSeconds("seconds", "Run for S seconds.", "S");
const QCommandLineOption kRecords("records", "The records to print, separated by commas (default DATA).",
                                  "NAMES", "DATA");
const QCommandLineOption kFormat("format", "tsv (default), csv or jsonl.", "FORMAT", "tsv");
const QCommandLineOption kCount("count", "Stop after N records.", "N");
const QCommandLineOption kDryRun("dry-run", "List the changes without sending them.");
const QCommandLineOption kTimeout("timeout", "Wait at most S seconds for the instrument (default 10).", "S", "10");

const std::map<QString, QString> kArgumentHelp = {
    {"TARGET", "A name announced through DNS-SD, NAME=MODEL@ADDRESS[:PORT] or MODEL@ADDRESS[:PORT]."},
    {"[PATH...]", "Paths below the model, such as cfg/clock/zone; none for the whole document."},
    {"PATH=VALUE...", "A setting's path below the model and the value to give it."},
    {"FILE", "The settings backup (XML that names the model), or the file a capture goes to."},
    {"BYTES", "The size of the capture, 1 to 67000000."},
};

const std::map<QString, Command>& commands()
{
    static const std::map<QString, Command> table = {
        {"list", {"The instruments announced on the network (for 3 s unless --seconds says otherwise).", "",
                  {kSeconds, kJson}}},
        {"get", {"The instrument's settings document, or the subtrees at PATHs such as cfg/clock/zone.",
                 "TARGET [PATH...]", {kJson}}},
        {"set", {"Sends the values in one message and prints what changed.", "TARGET PATH=VALUE...", {}}},
        {"stream", {"The data records as they arrive, those whose checksum holds.", "TARGET",
                    {kRecords, kFormat, kCount, kSeconds}}},
        {"save", {"Writes the instrument's settings to FILE.", "TARGET FILE", {}}},
        {"restore", {"Sends the settings in FILE that differ from the instrument's, and lists them.",
                     "TARGET FILE", {kDryRun}}},
        {"capture", {"A raw capture of BYTES bytes of a halden, written to FILE as it arrives.",
                     "TARGET BYTES FILE", {}}},
    };
    return table;
}

QString program_help(const QCommandLineParser& parser)
{
    QString text = parser.helpText();
    text += "\nCommands:\n";
    for (const auto& [name, command] : commands())
        text += "  " + name.leftJustified(9) + command.summary + "\n";
    text += "\nA TARGET is a name announced through DNS-SD, NAME=MODEL@ADDRESS[:PORT] or MODEL@ADDRESS[:PORT].\n"
            "Exit status: 0 done, 1 the instrument refused or could not be reached, 2 bad usage.\n";
    return text;
}

// A whole number from `low` to `high`, or -1.
long long number(const QString& text, long long low, long long high)
{
    bool ok = false;
    const long long value = text.toLongLong(&ok);
    return ok && value >= low && value <= high ? value : -1;
}

int usage(const QString& text, const QString& hint)
{
    Complain(text.toStdString(), EXIT_USAGE);
    std::cerr << hint.toStdString() << '\n';
    return EXIT_USAGE;
}

int run(const QStringList& arguments)
{
    // First the command, whatever follows it; then everything by that command's rules.
    QCommandLineParser first;
    first.setApplicationDescription("Every Sondar instrument from a terminal and from scripts.");
    const QCommandLineOption help = first.addHelpOption();
    const QCommandLineOption version = first.addVersionOption();
    first.addOption(kTimeout);
    first.addPositionalArgument("command", "list, get, set, stream, save, restore or capture.", "COMMAND");
    first.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QString try_program_help = "try: sondar-cli --help";
    if (!first.parse(arguments))
        return usage(first.errorText(), try_program_help);
    if (first.isSet(version)) {
        std::cout << "sondar-cli " << SONDAR_VERSION << '\n';
        return EXIT_OK;
    }
    if (first.positionalArguments().isEmpty()) {
        if (first.isSet(help)) {
            std::cout << program_help(first).toStdString();
            return EXIT_OK;
        }
        return usage("no command", try_program_help);
    }
    const QString name = first.positionalArguments().first();
    const auto found = commands().find(name);
    if (found == commands().end())
        return usage("unknown command \"" + name + "\"", try_program_help);
    const Command& command = found->second;

    QCommandLineParser parser;
    parser.setApplicationDescription(command.summary);
    parser.addHelpOption();
    parser.addOption(kTimeout);
    for (const QCommandLineOption& option : command.options)
        parser.addOption(option);
    parser.addPositionalArgument(name, "The command.");
    for (const QString& word : QString(command.arguments).split(' ', Qt::SkipEmptyParts))
        parser.addPositionalArgument(word, kArgumentHelp.at(word));
    if (!parser.parse(arguments))
        return usage(parser.errorText(), "try: sondar-cli " + name + " --help");
    if (parser.isSet("help")) {
        std::cout << parser.helpText().toStdString();
        return EXIT_OK;
    }
    QStringList words = parser.positionalArguments();
    words.removeFirst();
    const QString try_help = "try: sondar-cli " + name + " --help";
    const long long timeout = number(parser.value(kTimeout), 1, 86400);
    if (timeout < 0)
        return usage("--timeout takes whole seconds from 1 to 86400", try_help);
    const bool timed = name == "list" || name == "stream";
    const long long seconds = timed && parser.isSet(kSeconds) ? number(parser.value(kSeconds), 0, 86400) : -2;
    if (seconds == -1)
        return usage("--seconds takes whole seconds from 0 to 86400", try_help);

    if (name == "list") {
        if (!words.isEmpty())
            return usage("list takes no arguments", try_help);
        return List(seconds < 0 ? 3000 : int(seconds * 1000), parser.isSet(kJson));
    }
    const int least = name == "get" || name == "stream" ? 1 : name == "capture" ? 3 : 2;
    const bool more = name == "get" || name == "set";
    if (words.size() < least || (!more && words.size() > least))
        return usage("usage: sondar-cli " + name + " " + command.arguments, try_help);

    std::vector<std::pair<std::string, std::string>> values;
    for (const QString& word : words.mid(1)) {
        const int equals = word.indexOf('=');
        if (name == "set" && equals < 1)
            return usage("\"" + word + "\" is not PATH=VALUE", try_help);
        values.emplace_back(word.left(equals).toStdString(), word.mid(equals + 1).toStdString());
    }
    RecordFormat format = RecordFormat::Tsv;
    long long count = 0, bytes = 0;
    if (name == "stream") {
        if (!ParseRecordFormat(parser.value(kFormat).toStdString(), format))
            return usage("--format is tsv, csv or jsonl", try_help);
        count = parser.isSet(kCount) ? number(parser.value(kCount), 1, 1LL << 40) : 0;
        if (count < 0 || (count && seconds >= 0))
            return usage("--count takes a number from 1, and not with --seconds", try_help);
    }
    if (name == "capture" && (bytes = number(words[1], 1, 67000000)) < 0)
        return usage("BYTES is a number from 1 to 67000000", try_help);

    Session session(int(timeout * 1000));
    if (!session.Find(words[0].toStdString()))
        return Complain(session.Failure(), words[0].contains('@') ? EXIT_USAGE : EXIT_FAILED);
    const std::string file = words.last().toStdString();
    if (name == "get") {
        std::vector<std::string> paths;
        for (const auto& value : values)
            paths.push_back(value.first);
        return Get(session, paths, parser.isSet(kJson));
    }
    if (name == "set")
        return Set(session, values);
    if (name == "stream") {
        std::vector<std::string> records;
        for (const QString& record : parser.value(kRecords).split(',', Qt::SkipEmptyParts))
            records.push_back(record.toStdString());
        return Stream(session, records, format, long(count), seconds < 0 ? -1 : int(seconds * 1000));
    }
    if (name == "save")
        return Save(session, file);
    if (name == "restore")
        return Restore(session, file, parser.isSet(kDryRun));
    return Capture(session, bytes, file);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("sondar-cli");
    QCoreApplication::setApplicationVersion(SONDAR_VERSION);
    CatchInterrupts();
    int status = EXIT_OK;
    // Inside the event loop, so that the links end with it.
    QTimer::singleShot(0, [&] {
        status = run(QCoreApplication::arguments());
        QCoreApplication::exit(status);
    });
    app.exec();
    return status;
}
