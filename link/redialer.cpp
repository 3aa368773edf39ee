#include "link/redialer.h"

#include <QTimer>

#include <cmath>

#include "link/connector.h"

Redialer::Redialer(Connector& connector, QObject* parent)
    : QObject(parent), _connector(connector), _timer(new QTimer(this))
{
    _timer->setSingleShot(true);
    connect(_timer, &QTimer::timeout, this, &Redialer::OnAttempt);
    connect(&_connector, &Connector::Connected, this, &Redialer::OnConnected);
    connect(&_connector, &Connector::Disconnected, this, &Redialer::OnDisconnected);
}

void Redialer::Dial(const std::string& address, int scope, int port)
{
    _address = address;
    _scope = scope;
    _port = port;
    _connector.SetDialFailuresShown(false);
    _backoff.Reset();
    OnAttempt();
}

double Redialer::NextAttemptIn() const
{
    return _timer->isActive() ? _timer->remainingTime() / 1000.0 : -1;
}

void Redialer::OnConnected()
{
    _timer->stop();
    _backoff.Reset();
}

void Redialer::OnDisconnected()
{
    if (_port != 0 && !_timer->isActive())
        _timer->start(int(std::lround(_backoff.Next() * 1000)));
}

void Redialer::OnAttempt()
{
    // A dial still under way is left to finish; the next attempt comes at the back-off's pace.
    if (_connector.IsIdle())
        _connector.Connect(_address, _scope, _port);
    if (!_connector.IsConnected())
        _timer->start(int(std::lround(_backoff.Next() * 1000)));
}
