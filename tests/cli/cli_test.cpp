// sondar-cli: what it prints, tested as plain code, and the program itself against simulators.

#include <json/reader.h>

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <fstream>
#include <iterator>
#include <memory>

#include "cli/format.h"
#include "cli/settings.h"
#include "libskarn/dochalden.h"
#include "libskarn/doctolvan.h"
#include "sim/raw_capture.h"
#include "tests/sim/sim_process.h"

namespace {

Json::Value json_of(const std::string& text)
{
    Json::Value value;
    std::istringstream in(text);
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), in, &value, &errors)) << text;
    return value;
}

struct Ran {
    int code = -1;
    std::string out, err;
    qint64 ms = 0;
};

// Runs sondar-cli to its end; the test's event loop runs meanwhile, for relays and servers of its own.
Ran cli(const QStringList& arguments)
{
    QProcess process;
    QElapsedTimer clock;
    clock.start();
    process.start(SONDAR_CLI, arguments);
    const bool ended = QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 4 * TIMEOUT_MS);
    EXPECT_TRUE(ended) << arguments.join(' ').toStdString();
    if (!ended) {
        process.kill();
        process.waitForFinished(TIMEOUT_MS);
    }
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString(), clock.elapsed()};
}

QString target(const QString& model, int port)
{
    return model + "@127.0.0.1:" + QString::number(port);
}

std::unique_ptr<SimProcess> sim(const QString& model, const QString& name = "cli-sim")
{
    auto process = std::make_unique<SimProcess>(QStringList{"--model", model, "--name", name});
    EXPECT_TRUE(process->WaitListening()) << model.toStdString();
    return process;
}

// The settings that two instruments can share: all but the clock's running time and date.
Json::Value shared_settings(const std::string& json)
{
    Json::Value settings = json_of(json);
    settings["cfg"]["clock"].removeMember("time");
    settings["cfg"]["clock"].removeMember("date");
    return settings;
}

// Passes links through to a simulator and slips in, behind the first DATA line of each, a copy
// with its first field changed and so with a sum that no longer holds.
class PoisoningRelay {
public:
    explicit PoisoningRelay(int upstream)
    {
        EXPECT_TRUE(_server.listen(QHostAddress::LocalHost, 0));
        QObject::connect(&_server, &QTcpServer::newConnection, [this, upstream] {
            QTcpSocket* down = _server.nextPendingConnection();
            auto* up = new QTcpSocket(down);
            up->connectToHost(QHostAddress::LocalHost, quint16(upstream));
            QObject::connect(down, &QTcpSocket::readyRead, up, [down, up] { up->write(down->readAll()); });
            auto pending = std::make_shared<std::string>();
            auto poisoned = std::make_shared<bool>(false);
            QObject::connect(up, &QTcpSocket::readyRead, down, [=] {
                *pending += up->readAll().toStdString();
                for (size_t end; (end = pending->find('\n')) != std::string::npos;) {
                    const std::string line = pending->substr(0, end + 1);
                    pending->erase(0, end + 1);
                    down->write(line.data(), qint64(line.size()));
                    if (*poisoned || line.compare(0, 5, "DATA\t") != 0)
                        continue;
                    *poisoned = true;
                    std::string bad = line;
                    bad.replace(5, bad.find('\t', 5) - 5, "-424242");
                    EXPECT_FALSE(Connector::VerifyCheckSum(bad));
                    down->write(bad.data(), qint64(bad.size()));
                }
            });
            QObject::connect(down, &QTcpSocket::disconnected, down, &QObject::deleteLater);
        });
    }
    int Port() const { return _server.serverPort(); }

private:
    QTcpServer _server;
};

}  // namespace

TEST(CliFormat, RecordsKeepTheirHeadersNamesInEachFormat)
{
    const std::vector<std::string> names{"N", "R", "H", "S"};
    const std::vector<std::string> texts{"42", "-1.5", "0x00ff", "a,\"b\""};
    const struct {
        RecordFormat format;
        std::vector<std::string> texts;
        std::string header, record;
    } cases[] = {
        {RecordFormat::Tsv, texts, "DATATESTH\tN\tR\tH\tS\n", "DATATEST\t42\t-1.5\t0x00ff\ta,\"b\"\n"},
        {RecordFormat::Csv, texts, "DATATESTH,N,R,H,S\n", "DATATEST,42,-1.5,0x00ff,\"a,\"\"b\"\"\"\n"},
        {RecordFormat::Jsonl, texts, "", "{\"H\":\"0x00ff\",\"N\":42,\"R\":-1.5,\"S\":\"a,\\\"b\\\"\",\"record\":\"DATATEST\"}\n"},
        // A short line: the fields it does not reach stay empty, or out of the object.
        {RecordFormat::Csv, {"7"}, "DATATESTH,N,R,H,S\n", "DATATEST,7,,,\n"},
        {RecordFormat::Jsonl, {"7"}, "", "{\"N\":7,\"record\":\"DATATEST\"}\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(HeaderLine(c.format, "DATATESTH", names), c.header);
        EXPECT_EQ(RecordLine(c.format, "DATATEST", names, c.texts), c.record);
    }
}

TEST(CliSettings, JsonIsTypedAndABackupCarriesOnlySettingsAndRestoresOnlyDifferences)
{
    DocTolvan a;
    const Json::Value tree = JsonTree(ModelOf(a));
    EXPECT_TRUE(tree["cfg"]["temprange"].isString());
    EXPECT_TRUE(tree["cfg"]["sdmaddress"].isInt64());
    EXPECT_TRUE(tree["cfg"]["linelock"]["lasercooler"]["temp"].isDouble());
    EXPECT_TRUE(tree["output"]["waveforms"].isBool());
    EXPECT_FALSE(tree.isMember("ack") || tree.isMember("error"));

    a.Conf().Cfg().Temprange().set(0);
    const std::string backup = BackupText(a);
    for (const char* absent : {"<ver>", "<serialnumber>", "<cal>", "<cmd>", "<factory>", "<time>00:00", "<seconds>"})
        EXPECT_EQ(backup.find(absent), std::string::npos) << absent;
    EXPECT_NE(backup.find("<zone>UTC</zone>"), std::string::npos);

    DocTolvan b;
    const std::vector<Change> changes = ApplyBackup(b, backup);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].path + ": " + changes[0].from + " -> " + changes[0].to, "cfg/temprange: high -> low");
    EXPECT_TRUE(ApplyBackup(b, backup).empty());

    DocHalden other;
    for (const std::string& wrong : {backup, std::string("junk"), backup.substr(0, backup.size() / 2)})
        EXPECT_THROW(ApplyBackup(other, wrong), SettingsError);
}

TEST(Cli, SetThenGetRoundTripsOnEveryModelAndARefusedValueExitsOneWithTheInstrumentsText)
{
    const struct {
        const char* model;
        const char* path;
        const char* value;
        Json::Value shown;  // by get --json afterwards
        int code;
        const char* said;
    } cases[] = {
        {"tolvan", "cfg/temprange", "low", "low", 0, "cfg/temprange: high -> low"},
        {"tolvan", "cfg/temprange", "bogus", "high", 1, "refused temprange: invalid option: bogus"},
        {"halden", "cfg/fan_duty", "75", Json::Int64(75), 0, "cfg/fan_duty: 50 -> 75"},
        {"halden", "cfg/fan_duty", "many", Json::Int64(50), 1, "refused fan_duty: unable to read integer"},
        {"morvik", "cfg/clock/zone", "Europe/Oslo", "Europe/Oslo", 0, "UTC -> Europe/Oslo"},
        {"sarnel", "cfg/clock/zone", "Asia/Tokyo", "Asia/Tokyo", 0, "UTC -> Asia/Tokyo"},
        {"dravik", "cfg/clock/zone", "Europe/Berlin", "Europe/Berlin", 0, "UTC -> Europe/Berlin"},
        {"quenta", "cfg/clock/zone", "America/Denver", "America/Denver", 0, "UTC -> America/Denver"},
        {"bremmel", "cfg/clock/zone", "Mars/Olympus", "UTC", 1, "refused zone: "},
    };
    for (const auto& c : cases) {
        const auto instrument = sim(c.model);
        const QString at = target(c.model, instrument->port);
        const Ran set = cli({"set", at, QString(c.path) + "=" + c.value});
        EXPECT_EQ(set.code, c.code) << c.model << " " << c.value << ": " << set.err;
        EXPECT_NE((set.out + set.err).find(c.said), std::string::npos) << set.out << set.err;
        const Ran get = cli({"get", at, c.path, "--json"});
        ASSERT_EQ(get.code, 0) << get.err;
        Json::Value shown = json_of(get.out);
        for (const QString& part : QString(c.path).split('/'))
            shown = shown[part.toStdString()];
        EXPECT_EQ(shown, c.shown) << c.model << " " << c.path;
    }
}

TEST(Cli, StreamPrintsTheCountedRecordsInEachFormatAndCountsTheLineWithABadSum)
{
    const auto instrument = sim("tolvan");
    PoisoningRelay relay(instrument->port);
    for (const char* format : {"tsv", "csv", "jsonl"}) {
        const Ran ran = cli({"stream", target("tolvan", relay.Port()), "--count", "5", "--format", format});
        EXPECT_EQ(ran.code, 0) << ran.err;
        EXPECT_NE(ran.err.find("lines dropped for a bad checksum: 1"), std::string::npos) << format << ran.err;
        EXPECT_EQ(ran.out.find("-424242"), std::string::npos) << format;
        std::vector<std::string> lines = split_lines(ran.out);
        if (std::string(format) == "jsonl") {
            ASSERT_EQ(lines.size(), 5u) << ran.out;
            for (const std::string& line : lines) {
                const Json::Value record = json_of(line);
                EXPECT_EQ(record["record"], "DATA");
                EXPECT_TRUE(record["SECONDS"].isInt64() && record["CH4"].isDouble()) << line;
            }
            continue;
        }
        const char separator = std::string(format) == "csv" ? ',' : '\t';
        ASSERT_EQ(lines.size(), 6u) << ran.out;
        const std::vector<std::string> header = split_lines(lines[0], separator);
        EXPECT_EQ(header[0], "DATAH");
        EXPECT_NE(std::find(header.begin(), header.end(), "CH4"), header.end());
        for (size_t i = 1; i < lines.size(); ++i) {
            const std::vector<std::string> cells = split_lines(lines[i], separator);
            EXPECT_EQ(cells[0], "DATA");
            EXPECT_EQ(cells.size(), header.size()) << lines[i];
        }
    }
}

TEST(Cli, RestoreSendsOnlyTheDifferencesSoTwoInstrumentsAgreeAndRefusesAnotherModelsFile)
{
    QTemporaryDir dir;
    const QString backup = dir.filePath("tolvan.xml"), halden_backup = dir.filePath("halden.xml");
    const auto a = sim("tolvan", "tolvan-a"), b = sim("tolvan", "tolvan-b"), halden = sim("halden");
    const QString at_a = target("tolvan", a->port), at_b = target("tolvan", b->port);
    ASSERT_EQ(cli({"set", at_a, "cfg/temprange=low", "cfg/clock/zone=Europe/Oslo"}).code, 0);
    ASSERT_EQ(cli({"save", at_a, backup}).code, 0);

    const std::string changes = "cfg/temprange: high -> low\ncfg/clock/zone: UTC -> Europe/Oslo\n"
                                "cfg/network/name: tolvan-b -> tolvan-a\n";
    EXPECT_EQ(cli({"restore", at_b, backup, "--dry-run"}).out, changes + "dry run: nothing sent\n");
    EXPECT_EQ(cli({"get", at_b, "cfg/temprange"}).out.find("low"), std::string::npos);
    const Ran restored = cli({"restore", at_b, backup});
    EXPECT_EQ(restored.code, 0) << restored.err;
    EXPECT_EQ(restored.out, changes);
    EXPECT_EQ(cli({"restore", at_b, backup}).out, "nothing to change\n");
    EXPECT_EQ(shared_settings(cli({"get", at_a, "output", "box", "cfg", "--json"}).out),
              shared_settings(cli({"get", at_b, "output", "box", "cfg", "--json"}).out));

    // Refused before anything is sent: the instrument never even sees a connection.
    ASSERT_EQ(cli({"save", target("halden", halden->port), halden_backup}).code, 0);
    const size_t visits = a->Log().count("connected");
    const Ran refused = cli({"restore", at_a, halden_backup});
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("a backup of a halden, not of a tolvan; nothing sent"), std::string::npos) << refused.err;
    EXPECT_EQ(size_t(a->Log().count("connected")), visits);
}

TEST(Cli, ARawCaptureArrivesByteForByte)
{
    constexpr int64_t size = 2000000;
    QTemporaryDir dir;
    const QString file = dir.filePath("raw.dat");
    const auto halden = sim("halden");
    const Ran ran = cli({"capture", target("halden", halden->port), QString::number(size), file});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(ran.err.find("2.00 of 2.00 MB"), std::string::npos) << ran.err;
    std::ifstream in(file.toStdString(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    ASSERT_EQ(int64_t(bytes.size()), size);
    for (int64_t at = 0; at < size; ++at)
        ASSERT_EQ((unsigned char)bytes[size_t(at)], SimRawCapture::Byte(at)) << at;
}

TEST(Cli, ExitStatusesTellSuccessAFailedOrUnreachableInstrumentAndBadUsage)
{
    QTcpServer silent;  // takes the connection and never answers
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost, 0));
    const QString nobody = target("tolvan", free_port()), mute = target("tolvan", silent.serverPort());
    const struct {
        QStringList arguments;
        int code;
        const char* said;
    } cases[] = {
        {{"--version"}, 0, "sondar-cli 0."},
        {{"get", nobody, "--timeout", "2"}, 1, "cannot reach 127.0.0.1: The connection was refused"},
        {{"get", mute, "--timeout", "2"}, 1, "no answer from 127.0.0.1 within 2 s"},
        {{"set", mute, "cfg"}, 2, "\"cfg\" is not PATH=VALUE"},
        {{"stream", mute, "--format", "xml"}, 2, "--format is tsv, csv or jsonl"},
        {{"get", "tolvan@localhost"}, 2, "is not a numeric IPv4 or IPv6 address"},
        {{"fetch"}, 2, "unknown command \"fetch\""},
    };
    for (const auto& c : cases) {
        const Ran ran = cli(c.arguments);
        EXPECT_EQ(ran.code, c.code) << c.arguments.join(' ').toStdString() << ": " << ran.err;
        EXPECT_NE((ran.out + ran.err).find(c.said), std::string::npos) << ran.out << ran.err;
        if (c.arguments.contains(mute) && c.code == 1) {
            EXPECT_GE(ran.ms, 2000);
        }
    }
}
