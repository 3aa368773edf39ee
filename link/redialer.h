#pragma once
// Keeps one connector's link up without a person: whenever the link goes down (the instrument
// rebooted, its cable was pulled, a simulator was restarted) it dials the same target again after
// 1, 2, 4 … 30 s until it is up. Dial failures while redialing are not shown as message boxes.
// Connectors themselves never redial; only a program or window that wants it makes a Redialer.

#include <QObject>

#include <string>

#include "link/backoff.h"

class Connector;
class QTimer;

class Redialer : public QObject {
    Q_OBJECT

public:
    /// Follows `connector`, which must outlive it, from now on.
    explicit Redialer(Connector& connector, QObject* parent = nullptr);

    /// Dials `address` (numeric; `scope` an IPv6 interface index or 0) on `port` at once, and again
    /// at the back-off's pace until the link is up; later losses are redialed the same way.
    void Dial(const std::string& address, int scope, int port);

    /// Seconds until the next attempt, or a negative number when none is planned.
    double NextAttemptIn() const;

private slots:
    void OnConnected();
    void OnDisconnected();
    void OnAttempt();

private:
    Connector& _connector;
    QTimer* _timer;
    Backoff _backoff;
    std::string _address;
    int _scope = 0;
    int _port = 0;
};
