#include "cli/commands.h"

#include <QElapsedTimer>

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <unistd.h>

#include "cli/session.h"
#include "cli/settings.h"
#include "configurable/configurable.h"
#include "libskarn/dochalden.h"
#include "link/connector.h"
#include "link/connectortype.h"
#include "link/rawdatacapture.h"

namespace {

int failed(const Session& session)
{
    return Complain(session.Failure(), EXIT_FAILED);
}

bool read_file(const std::string& file, std::string& text)
{
    std::ifstream in(file, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return in.good() || in.eof();
}

int report_refusals(const std::vector<std::string>& refusals)
{
    for (const std::string& refusal : refusals)
        Complain("refused " + refusal, EXIT_FAILED);
    return refusals.empty() ? EXIT_OK : EXIT_FAILED;
}

// Prints the records of a few names as they arrive, and counts those dropped for their sum.
class RecordPrinter : public Connector::Listener {
public:
    RecordPrinter(Connector& link, const std::vector<std::string>& records, RecordFormat format)
        : _link(link), _format(format)
    {
        for (const std::string& record : records) {
            _link.RegisterListener(record, this);
            _link.RegisterListener(record + "H", this);
        }
    }
    ~RecordPrinter() override { _link.UnRegisterListener(this); }

    // A header that comes again unchanged (as after a change of the output selection) is not news.
    void GotConnectorHeader(Connector& link, std::string header) override
    {
        std::vector<std::string>& shown = _headers[header];
        if (shown == link.Header(header))
            return;
        shown = link.Header(header);
        std::cout << HeaderLine(_format, header, shown) << std::flush;
    }
    void GotConnectorData(Connector& link, std::string record) override
    {
        if (_limit && printed >= _limit)
            return;
        std::cout << RecordLine(_format, record, link.Header(record + "H"), link.VarStrings(record)) << std::flush;
        ++printed;
    }
    void GotConnectorBadChecksum(Connector&, std::string) override { ++dropped; }
    void Limit(long count) { _limit = count; }

    long printed = 0, dropped = 0;

private:
    Connector& _link;
    RecordFormat _format;
    long _limit = 0;
    std::map<std::string, std::vector<std::string>> _headers;
};

// Follows a raw capture into its file and shows how far it has come.
class CaptureFollower : public Connector::Listener {
public:
    CaptureFollower(Connector& link, const std::string& file, int64_t bytes)
        : _link(link), _capture(file), _bytes(uint64_t(bytes)), _terminal(isatty(STDERR_FILENO))
    {
        _link.RegisterListener("DATAFLRAW", this);
        _clock.start();
    }
    ~CaptureFollower() override { _link.UnRegisterListener(this); }

    void GotConnectorRawData(Connector&, std::string record, std::string line) override
    {
        if (done)
            return;
        ++pieces;
        const std::string_view payload = _RawDataCapture::Payload(record, line);
        if (payload.empty()) {
            done = true;
            _Show();
            return;
        }
        try {
            _capture.HandleData(payload.data(), payload.data() + payload.size());
        } catch (const std::runtime_error& e) {
            error = e.what();
            done = true;
        }
        _Show();
    }
    uint64_t Written() const { return _capture.BytesWritten(); }

    long pieces = 0;
    bool done = false;
    std::string error;

private:
    // A bar redrawn in place on a terminal at every thousandth; elsewhere a line at every tenth and
    // at the end.
    void _Show()
    {
        const uint64_t written = _capture.BytesWritten();
        const double seconds = double(_clock.elapsed()) / 1000;
        if (_terminal) {
            const int permille = _bytes ? int(written * 1000 / _bytes) : 1000;
            if (permille > _permille_shown || done) {
                _permille_shown = permille;
                std::cerr << '\r' << ProgressBar(written, _bytes, seconds) << (done ? "\n" : "") << std::flush;
            }
            return;
        }
        const int tenth = _bytes ? int(written * 10 / _bytes) : 10;
        if (tenth > _tenth_shown || (done && tenth < 10)) {
            _tenth_shown = tenth;
            std::cerr << ProgressText(written, _bytes, seconds) << '\n' << std::flush;
        }
    }

    Connector& _link;
    _RawDataCapture _capture;
    const uint64_t _bytes;
    const bool _terminal;
    QElapsedTimer _clock;
    int _tenth_shown = 0;
    int _permille_shown = -1;
};

}  // namespace

int Complain(const std::string& text, int status)
{
    std::cerr << "sondar-cli: " << text << std::endl;
    return status;
}

int List(int ms, bool json)
{
    Browser browser;
    RunUntil([] { return false; }, ms);
    for (const std::string& error : browser.Errors())
        Complain(error, EXIT_FAILED);
    Json::Value found(Json::arrayValue);
    if (!json)
        std::cout << "NAME\tMODEL\tVERSION\tADDRESSES\tPORT\n";
    for (const auto& host : browser.Hosts()) {
        const auto version = host->txt.find("ver");
        Json::Value entry;
        entry["name"] = host->name;
        entry["model"] = Browser::ModelOfType(host->type);
        entry["version"] = version == host->txt.end() ? "" : version->second;
        entry["addresses"] = Json::Value(Json::arrayValue);
        std::string addresses;
        for (const SocketAddress& address : host->addresses) {
            entry["addresses"].append(address.Presentation());
            addresses += (addresses.empty() ? "" : ",") + address.Presentation();
        }
        entry["port"] = host->addresses.empty() ? 0 : host->addresses.begin()->Port();
        found.append(entry);
        if (!json)
            std::cout << host->name << '\t' << entry["model"].asString() << '\t' << entry["version"].asString()
                      << '\t' << addresses << '\t' << entry["port"].asInt() << '\n';
    }
    if (json)
        std::cout << JsonText(found);
    return browser.Errors().empty() ? EXIT_OK : EXIT_FAILED;
}

int Get(Session& session, const std::vector<std::string>& paths, bool json)
{
    if (!session.Open())
        return failed(session);
    Configurable& doc = session.Link().Doc();
    std::vector<Configurable*> nodes;
    try {
        for (const std::string& path : paths)
            nodes.push_back(&NodeAt(doc, path));
    } catch (const SettingsError& e) {
        return Complain(e.what(), EXIT_USAGE);
    }
    if (nodes.empty())
        nodes.push_back(&ModelOf(doc));
    if (!json) {
        for (const Configurable* node : nodes)
            std::cout << DocumentText(*node);
        return EXIT_OK;
    }
    // The paths' subtrees in one object, nested as in the document below the model node.
    Json::Value tree(Json::objectValue);
    for (const Configurable* node : nodes) {
        const std::string path = PathOf(*node);
        Json::Value* at = &tree;
        std::istringstream parts(path);
        for (std::string part; std::getline(parts, part, '/');)
            at = &(*at)[part];
        *at = JsonTree(*node);
    }
    std::cout << JsonText(tree);
    return EXIT_OK;
}

int Set(Session& session, const std::vector<std::pair<std::string, std::string>>& values)
{
    if (!session.Open())
        return failed(session);
    Connector& link = session.Link();
    std::string message;
    std::vector<Configurable*> leaves;
    std::vector<std::string> before;
    try {
        message = SetMessage(link.Doc(), values);
        for (const auto& value : values) {
            leaves.push_back(&NodeAt(link.Doc(), value.first));
            before.push_back(TextOf(*leaves.back()));
        }
    } catch (const SettingsError& e) {
        return Complain(e.what(), EXIT_USAGE);
    }
    link.OnSendRawXML(message);
    // Asked again, so that the values shown are the instrument's, whether or not it reports them.
    for (const Configurable* leaf : leaves) {
        std::ostringstream query;
        Configurable::set_compact(query, true);
        leaf->build_query(query) << '\n';
        link.OnSendRawXML(query.str());
    }
    std::vector<std::string> refusals;
    if (!session.Sync(refusals))
        return failed(session);
    for (size_t i = 0; i < leaves.size(); ++i) {
        const std::string now = TextOf(*leaves[i]);
        std::cout << PathOf(*leaves[i]) << ": "
                  << (now == before[i] ? now + " (unchanged)" : before[i] + " -> " + now) << '\n';
    }
    return report_refusals(refusals);
}

int Stream(Session& session, const std::vector<std::string>& records, RecordFormat format, long count, int ms)
{
    RecordPrinter printer(session.Link(), records, format);
    printer.Limit(count);
    QElapsedTimer clock;
    clock.start();
    if (!session.Open())
        return failed(session);
    std::string names;
    for (const std::string& record : records)
        names += (names.empty() ? "" : " or ") + record;
    const bool flowing = session.Wait([&] { return printer.printed > 0; }, session.TimeoutMs(), names + " record");
    if (flowing)
        RunUntil([&] { return (count && printer.printed >= count) || !session.Link().IsConnected(); },
                 ms < 0 ? -1 : std::max(0, ms - int(clock.elapsed())));
    Complain("lines dropped for a bad checksum: " + std::to_string(printer.dropped), EXIT_OK);
    if (!flowing)
        return failed(session);
    if (!session.Link().IsConnected())
        return Complain("the link was lost", EXIT_FAILED);
    return EXIT_OK;
}

int Save(Session& session, const std::string& file)
{
    if (!session.Open())
        return failed(session);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << BackupText(session.Link().Doc());
    out.close();
    if (!out)
        return Complain("cannot write " + file, EXIT_FAILED);
    std::cout << "saved the settings of " << session.Link().Host() << " to " << file << '\n';
    return EXIT_OK;
}

int Restore(Session& session, const std::string& file, bool dry_run)
{
    std::string text;
    if (!read_file(file, text))
        return Complain("cannot read " + file, EXIT_USAGE);
    // Refused before anything goes out: a file of another model, or none at all.
    try {
        const std::string model = ModelOf(ConnectorType::Make(session.Model())->Doc()).name();
        const std::string backup = BackupModel(text);
        if (backup != model)
            throw SettingsError("a backup of a " + backup + ", not of a " + model);
    } catch (const SettingsError& e) {
        return Complain(file + ": " + e.what() + "; nothing sent", EXIT_USAGE);
    }
    if (!session.Open())
        return failed(session);
    std::vector<Change> changes;
    try {
        changes = ApplyBackup(session.Link().Doc(), text);
    } catch (const SettingsError& e) {
        return Complain(file + ": " + e.what() + "; nothing sent", EXIT_USAGE);
    }
    for (const Change& change : changes)
        std::cout << change.path << ": " << change.from << " -> " << change.to << '\n';
    if (changes.empty() || dry_run) {
        std::cout << (changes.empty() ? "nothing to change\n" : "dry run: nothing sent\n");
        return EXIT_OK;
    }
    session.Link().OnSendXMLChanges();
    std::vector<std::string> refusals;
    if (!session.Sync(refusals))
        return failed(session);
    return report_refusals(refusals);
}

int Capture(Session& session, int64_t bytes, const std::string& file)
{
    if (session.Model() != "halden")
        return Complain("a raw capture needs a halden, not a " + session.Model(), EXIT_USAGE);
    if (!std::ofstream(file, std::ios::binary | std::ios::trunc))
        return Complain("cannot write " + file, EXIT_FAILED);
    if (!session.Open())
        return failed(session);
    Connector& link = session.Link();
    CaptureFollower follower(link, file, bytes);
    // The settings go first: the instrument reads them when the recording starts.
    ConfigCfgRawDataCapture& settings = link.Doc_Halden().Conf().Cfg().Rawdatacapture();
    settings.Size().set(bytes);
    settings.When().set(0);
    link.OnSendXMLChanges();
    link.OnSendRawXML(_RawDataCapture::START_MESSAGE);
    while (!follower.done) {
        const long pieces = follower.pieces;
        if (!session.Wait([&] { return follower.pieces > pieces; }, session.TimeoutMs(), "capture data"))
            return failed(session);
    }
    if (!follower.error.empty())
        return Complain("the capture cannot be decompressed: " + follower.error, EXIT_FAILED);
    if (follower.Written() != uint64_t(bytes))
        return Complain("the capture ended after " + std::to_string(follower.Written()) + " of " +
                            std::to_string(bytes) + " bytes", EXIT_FAILED);
    std::cout << "captured " << bytes << " bytes to " << file << '\n';
    return EXIT_OK;
}
