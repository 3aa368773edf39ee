#include "sim/sim_server.h"

#include <QCoreApplication>
#include <QTcpSocket>

#include <iostream>
#include <vector>

#include "sim/sim_instrument.h"

namespace {

// The stream's pace: faster than the fastest rate, so that records go out on time.
constexpr int TICK_MS = 20;

std::string peer(const QTcpSocket* client)
{
    return (client->peerAddress().toString() + ":" + QString::number(client->peerPort())).toStdString();
}

}  // namespace

SimServer::SimServer(SimInstrument& instrument, int speed) : _instrument(instrument), _speed(speed)
{
    _ticker.setTimerType(Qt::PreciseTimer);
    _ticker.setInterval(TICK_MS);
    connect(&_ticker, &QTimer::timeout, this, [this] { _OnTick(); });
    connect(&_server, &QTcpServer::newConnection, this, [this] { _OnNewConnection(); });
    _clock.start();
}

SimServer::~SimServer()
{
    for (auto& entry : _clients) {
        entry.first->disconnect(this);
        entry.first->close();
    }
}

bool SimServer::Listen(const QHostAddress& address, quint16 port, QString& error)
{
    _address = address;
    _port = port;
    if (!_server.listen(address, port)) {
        error = _server.errorString();
        return false;
    }
    _ticker.start();
    return true;
}

void SimServer::_OnNewConnection()
{
    while (QTcpSocket* client = _server.nextPendingConnection()) {
        client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        client->setReadBufferSize(qint64(MAX_LINE));
        const std::string name = peer(client);
        _clients[client].peer = name;
        std::cerr << "sondar-sim: " << name << " connected\n";
        connect(client, &QTcpSocket::readyRead, this, [this, client] { _OnReadyRead(client); });
        connect(client, &QTcpSocket::disconnected, this, [this, client, name] {
            if (_clients.erase(client)) {
                std::cerr << "sondar-sim: " << name << " left\n";
                client->deleteLater();
            }
        });
        _Write(client, _instrument.Headers());
    }
}

void SimServer::_OnReadyRead(QTcpSocket* client)
{
    const auto found = _clients.find(client);
    if (found != _clients.end() && !found->second.turn_pending)
        _ServePending(client);
}

void SimServer::_ServePending(QTcpSocket* client)
{
    auto found = _clients.find(client);
    if (found == _clients.end())
        return;
    found->second.turn_pending = false;
    std::string& pending = found->second.pending;
    size_t start = 0;
    for (int lines = 0; lines < MESSAGES_PER_TURN; ++lines) {
        size_t end = pending.find('\n', start);
        if (end == std::string::npos) {
            // More is taken from the socket only now: a client that sends faster than it is
            // served waits in its own TCP window.
            pending.erase(0, start);
            start = 0;
            const QByteArray data = client->readAll();
            pending.append(data.constData(), size_t(data.size()));
            end = pending.find('\n');
            if (end == std::string::npos) {
                if (pending.size() > MAX_LINE)
                    _Drop(client, "sends a line without end");
                return;
            }
        }
        if (pending[start] == '<') {
            _Serve(client, pending.substr(start, end - start));
            if (!_clients.count(client))
                return;  // dropped, or closed by a reboot
        } else if (const std::string answer = _instrument.ServeText(pending.substr(start, end - start));
                   !answer.empty() && !_Write(client, answer)) {
            return;  // dropped
        }
        start = end + 1;
    }
    pending.erase(0, start);
    // The rest waits for the next turn of the event loop, after the stream and the other clients.
    found->second.turn_pending = true;
    QTimer::singleShot(0, client, [this, client] { _ServePending(client); });
}

void SimServer::_Serve(QTcpSocket* client, const std::string& message)
{
    const SimInstrument::Served served = _instrument.Serve(message);
    if (!served.reply.empty())
        _Write(client, served.reply + '\n');
    if (!served.changes.empty())
        _Broadcast(served.changes + '\n');
    _Broadcast(_instrument.TakeLines());
    if (served.reboot)
        _Reboot();
}

void SimServer::_OnTick()
{
    bool behind = false;
    for (const auto& entry : _clients)
        behind = behind || entry.first->bytesToWrite() > STREAM_BACKLOG;
    _instrument.HoldStream(behind);
    _instrument.Advance(double(_clock.nsecsElapsed()) * 1e-9 * _speed);
    _Broadcast(_instrument.TakeLines());
}

bool SimServer::_Write(QTcpSocket* client, const std::string& text)
{
    client->write(text.data(), qint64(text.size()));
    // Handed to the system at once: what stays behind is what the client has not taken.
    client->flush();
    if (!_clients.count(client))
        return false;  // the write found it gone
    if (client->bytesToWrite() > MAX_BACKLOG) {
        _Drop(client, "does not read what it is sent");
        return false;
    }
    return true;
}

void SimServer::_Broadcast(const std::string& text)
{
    if (text.empty())
        return;
    std::vector<QTcpSocket*> clients;
    for (const auto& entry : _clients)
        clients.push_back(entry.first);
    for (QTcpSocket* client : clients)
        if (_clients.count(client))
            _Write(client, text);
}

void SimServer::_Drop(QTcpSocket* client, const std::string& reason)
{
    const auto found = _clients.find(client);
    std::cerr << "sondar-sim: " << found->second.peer << " dropped: it " << reason << '\n';
    _clients.erase(found);
    client->disconnect(this);
    client->abort();
    client->deleteLater();
}

void SimServer::_Reboot()
{
    std::cerr << "sondar-sim: rebooting\n";
    _ticker.stop();
    // An instrument that reboots refuses connections, from before it drops its clients: one that
    // redials at once must not land in the backlog of a server about to close. The port stays
    // bound meanwhile, so that nobody takes it: on loopback a client that dials the port again and
    // again would otherwise sooner or later be given it as its own local port and connect to itself.
    _server.close();
    if (!_held.bind(_address, _port, QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint))
        std::cerr << "sondar-sim: cannot hold the port while rebooting: " << _held.errorString().toStdString() << '\n';
    for (auto& entry : _clients) {
        QTcpSocket* client = entry.first;
        client->disconnect(this);
        connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
        // What was sent, the reboot event last, still goes out; a client that reads nothing is cut.
        QTimer::singleShot(REBOOT_MS, client, [client] { client->abort(); });
        client->disconnectFromHost();
    }
    _clients.clear();
    QTimer::singleShot(REBOOT_MS, this, [this] { _Restart(); });
}

void SimServer::_Restart()
{
    _instrument.Restart();
    if (!_server.listen(_address, _port)) {
        std::cerr << "sondar-sim: cannot listen again after the reboot: " << _server.errorString().toStdString()
                  << '\n';
        QCoreApplication::exit(1);
        return;
    }
    _held.abort();
    std::cerr << "sondar-sim: up again\n";
    _ticker.start();
}
