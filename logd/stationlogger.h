#pragma once
// A station's instruments, logged without anyone watching: one Connector per instrument, dialed
// again at a capped back-off whenever its link goes down, and every record that is asked for
// handed to a Recorder as a row of <model>_<record>. Connections, disconnections and the
// instruments' own event lines go to the events.

#include <QObject>

#include <map>
#include <memory>
#include <set>
#include <string>

#include "discovery/bonjourclient.h"
#include "link/namedinstrument.h"

class Recorder;

class StationLogger : public QObject, public BonjourClientListener {
    Q_OBJECT

public:
    /// `records`: the record names to keep ("DATA", "DATASTAT"); empty for every record of the data,
    /// status, test and clock kinds.
    StationLogger(Recorder& recorder, std::set<std::string> records);
    ~StationLogger() override;

    /// Logs `instrument` from now on; false, and nothing changes, when one of that name is logged.
    bool Add(const NamedInstrument& instrument);
    /// Logs every instrument that DNS-SD announces, of any model, at the best address it reports:
    /// IPv4, else IPv6 link-local, else any.
    void Browse();

    int Connected() const;
    int Total() const { return int(_taps.size()); }

    void AddService(std::string name, std::string type, std::string domain, unsigned interface_index,
                    std::string host, const SocketAddress& address,
                    const std::map<std::string, std::string>& txt) override;
    bool ServiceError(std::string message) override;

private:
    class Tap;

    Recorder& _recorder;
    const std::set<std::string> _records;
    std::map<std::string, std::unique_ptr<Tap>> _taps;
    std::set<std::string> _browsed;  // the names that DNS-SD brought
    std::unique_ptr<BonjourClient> _client;
};
