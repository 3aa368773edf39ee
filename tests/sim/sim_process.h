#pragma once
// A real sondar-sim for a test, and a bare socket as its client, both driven by the event loop; lines
// of the stream, fields of a record, documents as text.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "configurable/configurable.h"
#include "link/connector.h"

/// The lines of a piece of the stream, without their line feeds; or, split at tabs, the fields of
/// a line, the record name first.
inline std::vector<std::string> split_lines(const std::string& text, char end = '\n')
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, end);)
        parts.push_back(part);
    return parts;
}

inline std::vector<std::string> fields(const std::string& line)
{
    return split_lines(line, '\t');
}

/// The lines of one record name.
inline std::vector<std::string> records(const std::string& text, const std::string& name)
{
    std::vector<std::string> found;
    for (const std::string& line : split_lines(text))
        if (line.compare(0, name.size() + 1, name + '\t') == 0)
            found.push_back(line);
    return found;
}

/// A document as one line, as the instrument answers "<arvex>&query;</arvex>".
inline std::string compact_query(const Configurable& doc)
{
    std::ostringstream out;
    Configurable::set_compact(out, true);
    doc.configuration(out);
    return out.str();
}

/// The text with the clock's time and date blanked: they move on between two queries.
inline std::string without_clock_time(const std::string& text)
{
    static const std::regex clock("<clock><time>[^<]*</time><date>[^<]*</date>");
    return std::regex_replace(text, clock, "<clock><time/><date/>");
}

// Generous: sanitizer builds on a busy machine start slowly.
inline constexpr int TIMEOUT_MS = 30000;

inline int free_port()
{
    QTcpServer probe;
    EXPECT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
    return probe.serverPort();
}

// One sondar-sim for one test, killed at its end if still running; on a port of its own, or on
// the port of one that went before it.
class SimProcess {
public:
    explicit SimProcess(QStringList arguments, int port = free_port()) : port(port)
    {
        process.start(SONDAR_SIM, arguments << "--port" << QString::number(port));
    }
    ~SimProcess()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(TIMEOUT_MS);
        }
    }
    bool WaitListening()
    {
        return QTest::qWaitFor([&] {
            output += process.readAllStandardOutput();
            return output.contains("listening on 127.0.0.1:" + QByteArray::number(port));
        }, TIMEOUT_MS);
    }
    /// Standard error so far: who came, left and was dropped.
    const QByteArray& Log()
    {
        log += process.readAllStandardError();
        return log;
    }

    const int port;
    QProcess process;
    QByteArray output, log;
};

// A client that is not the link: a bare socket and the lines it has read.
class RawClient {
public:
    bool Connect(int port)
    {
        socket.connectToHost(QHostAddress::LocalHost, quint16(port));
        return QTest::qWaitFor([&] { return socket.state() == QAbstractSocket::ConnectedState; }, TIMEOUT_MS);
    }
    void Send(const std::string& text) { socket.write(text.data(), qint64(text.size())); }
    /// Reads lines until one satisfies `want`, and gives that one; "" if none comes.
    std::string WaitFor(const std::function<bool(const std::string&)>& want)
    {
        std::string found;
        (void)QTest::qWaitFor([&] {
            while (socket.canReadLine()) {
                lines.push_back(socket.readLine().toStdString());
                if (want(lines.back())) {
                    found = lines.back();
                    return true;
                }
            }
            return false;
        }, TIMEOUT_MS);
        return found;
    }
    std::string WaitForXML()
    {
        return WaitFor([](const std::string& line) { return line[0] == '<'; });
    }

    QTcpSocket socket;
    std::vector<std::string> lines;
};

/// The simulator's own answer to &query;, without its line feed, through a client of its own.
inline std::string query_truth(int port)
{
    RawClient probe;
    EXPECT_TRUE(probe.Connect(port));
    probe.Send("<arvex>&query;</arvex>\n");
    std::string truth = probe.WaitForXML();
    if (!truth.empty())
        truth.pop_back();
    return truth;
}

/// What a link hears: record names, DATA times and arrivals, events.
class Heard : public Connector::Listener {
public:
    Heard() { clock.start(); }
    void GotConnectorData(Connector& link, std::string record) override
    {
        data.push_back(record);
        if (record != "DATA")
            return;
        const std::string var = link.Host() + ":DATA:";
        times.push_back(link.VarNumeric(var + "SECONDS") + link.VarNumeric(var + "NANOSECONDS") / 1e9);
        arrivals.push_back(clock.elapsed());
    }
    void GotConnectorEvent(Connector&, std::string, std::string event, std::string) override
    {
        events.push_back(event);
    }
    bool WaitFor(const std::string& record) { return WaitIn(data, record); }
    bool WaitForEvent(const std::string& event) { return WaitIn(events, event); }
    static bool WaitIn(const std::vector<std::string>& heard, const std::string& what)
    {
        return QTest::qWaitFor([&] { return std::find(heard.begin(), heard.end(), what) != heard.end(); }, TIMEOUT_MS);
    }
    bool WaitForData(size_t more)
    {
        const size_t target = times.size() + more;
        return QTest::qWaitFor([&] { return times.size() >= target; }, TIMEOUT_MS);
    }

    QElapsedTimer clock;
    std::vector<std::string> data, events;
    std::vector<double> times;
    std::vector<qint64> arrivals;
};
