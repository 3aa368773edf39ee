#pragma once
// An instrument reached from the command line: the target found, one Connector to it, and a way
// to wait until the instrument has served what was sent. Everything runs on the Qt event loop,
// driven by RunUntil; nothing here makes a widget.

#include <QObject>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "discovery/bonjourclient.h"
#include "discovery/bonjourresolver.h"
#include "link/namedinstrument.h"

class Connector;

/// Runs the event loop until `done()` holds, `ms` milliseconds pass (never when negative), or
/// an interrupt arrives; answers done().
bool RunUntil(const std::function<bool()>& done, int ms);

/// From now on SIGINT and SIGTERM end RunUntil instead of the process.
void CatchInterrupts();
/// Whether SIGINT or SIGTERM arrived.
bool Interrupted();

/// Browses for every model's service type and keeps what is announced, one record per name.
class Browser : public BonjourResolver {
public:
    Browser();

    /// The model word of a service type, "tolvan" for "_arvex-tolvan._tcp"; "" for no model's.
    static std::string ModelOfType(const std::string& type);

    bool ServiceError(std::string message) override;
    /// The failures reported so far, as the client words them.
    const std::vector<std::string>& Errors() const { return _errors; }

private:
    std::vector<std::string> _errors;
    BonjourClient _client{this};
};

/// One instrument and its link.
class Session {
public:
    /// Waits up to `timeout_ms` for the instrument to be found and reached and for each answer.
    explicit Session(int timeout_ms);
    ~Session();

    /// Finds `target`: "[NAME=]MODEL@ADDRESS[:PORT]" at once, any other text as the name that an
    /// instrument announces through DNS-SD (the case not counting). Then the link exists, not
    /// yet dialled, so that listeners can be there from its first line.
    bool Find(const std::string& target);
    /// The model word of the instrument found.
    const std::string& Model() const { return _instrument.model; }

    /// Dials the instrument and waits until its document has arrived in the link's replica.
    bool Open();
    /// The link, once the instrument is found.
    Connector& Link() { return *_link; }

    /// Waits until the instrument has served everything sent to it so far; `refusals` are then
    /// the texts of the <Error> elements it answered since the last Sync ("param: text").
    bool Sync(std::vector<std::string>& refusals);

    /// Runs the event loop until `done()` holds; false, with the reason in Failure(), when
    /// `ms` milliseconds pass first (never when negative), the link fails or an interrupt arrives.
    /// `what` names what is awaited, for the reason.
    bool Wait(const std::function<bool()>& done, int ms, const std::string& what);
    int TimeoutMs() const { return _timeout_ms; }
    const std::string& Failure() const { return _failure; }

private:
    void _MakeLink();
    void _Dial(const std::vector<SocketAddress>& addresses);
    /// The addresses announced for the instrument that were not dialled yet.
    std::vector<SocketAddress> _Untried() const;
    bool _Sync(std::vector<std::string>& refusals, int ms);
    void _GotXMLLine(const std::string& line);

    const int _timeout_ms;
    NamedInstrument _instrument;
    std::vector<SocketAddress> _addresses;
    std::set<SocketAddress> _tried;
    std::unique_ptr<Browser> _browser;  ///< kept for addresses announced late
    std::shared_ptr<Connector> _link;
    std::unique_ptr<QObject> _context;  ///< ends the connections to the link with the session
    std::string _failure;
    bool _up = false;
    bool _lost = false;
    int _syncs_sent = 0;
    int _syncs_served = 0;
    std::vector<std::string> _refusals;
};
