#pragma once
// A simulated instrument on the network: one TCP server, any number of clients.

#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <map>
#include <string>

class SimInstrument;

/// Serves one SimInstrument over TCP, paced by the Qt event loop.
///
/// Each line from a client that begins with "<" is a message: its reply goes back to that client
/// alone, and what it changed goes to every client, as an instrument reports its changes. The
/// data stream goes to every client; a new client gets the units and headers at once. A client
/// that falls behind holds back a raw capture; one that leaves too much unread, or sends a line
/// without end, is dropped, so that it can neither hold up the others nor make the server grow. A
/// reboot closes every client and, for a moment, refuses connections.
class SimServer : public QObject {
public:
    /// Bytes that may wait unsent to one client before it is dropped.
    static constexpr qint64 MAX_BACKLOG = 1 << 20;
    /// Bytes waiting to one client that hold back the bulk stream, so that a capture of any
    /// size paces itself to its slowest reader instead of getting it dropped.
    static constexpr qint64 STREAM_BACKLOG = 1 << 18;
    /// Bytes of one unfinished incoming line before its client is dropped.
    static constexpr size_t MAX_LINE = 1 << 20;
    /// Lines of one client served in one turn of the event loop.
    static constexpr int MESSAGES_PER_TURN = 50;
    /// Milliseconds that a restart keeps the port closed.
    static constexpr int REBOOT_MS = 1000;

    /// Serves `instrument`, whose time runs `speed` times as fast as the wall clock: its records,
    /// its clock, its laser and the air it measures all move on faster, as in a film run fast.
    explicit SimServer(SimInstrument& instrument, int speed = 1);
    ~SimServer() override;

    /// Starts serving on `address`:`port`; false, with the reason in `error`, if that fails.
    bool Listen(const QHostAddress& address, quint16 port, QString& error);

private:
    void _OnNewConnection();
    void _OnReadyRead(QTcpSocket* client);
    /// Serves a turn's worth of the client's lines.
    void _ServePending(QTcpSocket* client);
    void _OnTick();
    void _Serve(QTcpSocket* client, const std::string& message);
    /// Writes to one client; false if the client had to be dropped.
    bool _Write(QTcpSocket* client, const std::string& text);
    void _Broadcast(const std::string& text);
    void _Drop(QTcpSocket* client, const std::string& reason);
    void _Reboot();
    void _Restart();

    SimInstrument& _instrument;
    QTcpServer _server;
    QTcpSocket _held;  ///< binds the port, not listening, while rebooting
    QTimer _ticker;
    QElapsedTimer _clock;
    const int _speed;
    QHostAddress _address;
    quint16 _port = 0;
    struct _Client {
        std::string peer;     ///< "127.0.0.1:50312", for the log
        std::string pending;  ///< what it has sent and is not yet served
        bool turn_pending = false;  ///< more of it is to be served in a later turn
    };
    std::map<QTcpSocket*, _Client> _clients;
};
