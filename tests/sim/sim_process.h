#pragma once
// A real sondar-sim for a test, and a bare socket as its client: both driven by the event loop.

#include <gtest/gtest.h>

#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <functional>
#include <string>
#include <vector>

// Generous: sanitizer builds on a busy machine start slowly.
inline constexpr int TIMEOUT_MS = 30000;

inline int free_port()
{
    QTcpServer probe;
    EXPECT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
    return probe.serverPort();
}

// One sondar-sim for one test, killed at its end if still running.
class SimProcess {
public:
    explicit SimProcess(QStringList arguments) : port(free_port())
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
