#include "cli/session.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>

#include "cli/settings.h"
#include "foundation/signalpipe.h"
#include "link/connector.h"

namespace {

// An entity no instrument knows: it comes back in an <Error> to the sender alone, after the
// answers to everything sent before it, which makes it a mark in the stream of answers.
const char* const kMark = "query_cli_mark";

bool interrupted = false;

int remaining(const QElapsedTimer& clock, int ms)
{
    return std::max(0, ms - int(clock.elapsed()));
}

}  // namespace

bool RunUntil(const std::function<bool()>& done, int ms)
{
    QElapsedTimer clock;
    clock.start();
    // Only wakes the loop at the deadline; set again each time, since a timer may fire a little early.
    QTimer wake;
    wake.setSingleShot(true);
    wake.setTimerType(Qt::PreciseTimer);
    while (!done()) {
        if (interrupted)
            return false;
        if (ms >= 0) {
            const qint64 left = ms - clock.elapsed();
            if (left <= 0)
                return false;
            wake.start(int(left));
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void CatchInterrupts()
{
    const int fd = signal_pipe_for_quit();
    if (fd < 0)
        return;
    auto* notifier = new QSocketNotifier(fd, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, [notifier] {
        interrupted = true;
        notifier->setEnabled(false);
    });
}

bool Interrupted()
{
    return interrupted;
}

// --- Browser ---

Browser::Browser()
{
    for (const std::string& model : NamedInstrument::Models())
        _client.Browse(NamedInstrument::ServiceTypeOf(model));
}

std::string Browser::ModelOfType(const std::string& type)
{
    for (const std::string& model : NamedInstrument::Models())
        if (type.compare(0, NamedInstrument::ServiceTypeOf(model).size(), NamedInstrument::ServiceTypeOf(model)) == 0)
            return model;
    return "";
}

bool Browser::ServiceError(std::string message)
{
    _errors.push_back(message);
    return false;
}

// --- Session ---

Session::Session(int timeout_ms) : _timeout_ms(timeout_ms)
{
}

Session::~Session()
{
    // A failure after the session's end is nobody's business; null would bring the message box back.
    Connector::SetMessageBox([](QWidget*, const QString&, const QString&) {});
}

bool Session::Find(const std::string& target)
{
    if (target.find('@') != std::string::npos) {
        try {
            _instrument = NamedInstrument::ParseTarget(target);
        } catch (const NamedInstrument::Error& e) {
            _failure = "\"" + target + "\": " + e.what();
            return false;
        }
        _addresses = {_instrument.address};
        _MakeLink();
        return true;
    }
    _browser = std::make_unique<Browser>();
    Browser& browser = *_browser;
    std::shared_ptr<BonjourResolver::HostInfo> found;
    const bool announced = RunUntil([&] {
        found = browser.Lookup(target);
        return (found && !Browser::ModelOfType(found->type).empty()) || !browser.Errors().empty();
    }, _timeout_ms);
    if (!announced) {
        _failure = "no instrument \"" + target + "\" was announced within " + std::to_string(_timeout_ms / 1000) + " s";
        return false;
    }
    if (!found) {
        _failure = "cannot look for \"" + target + "\": " + browser.Errors().front();
        return false;
    }
    _instrument.name = found->name;
    _instrument.model = Browser::ModelOfType(found->type);
    _addresses.assign(found->addresses.begin(), found->addresses.end());
    _MakeLink();
    return true;
}

void Session::_MakeLink()
{
    _link = Connector::Factory(nullptr, _instrument.name, _instrument.model);
    _context = std::make_unique<QObject>();
    QObject::connect(_link.get(), &Connector::Connected, _context.get(), [this] { _up = true; });
    QObject::connect(_link.get(), &Connector::Disconnected, _context.get(), [this] { _lost = true; });
    QObject::connect(_link.get(), &Connector::GotXMLLine, _context.get(),
                     [this](const std::string& line) { _GotXMLLine(line); });
}

bool Session::Open()
{
    QElapsedTimer clock;
    clock.start();
    Connector::SetMessageBox([this](QWidget*, const QString&, const QString& text) {
        // An announced instrument's further addresses may have come in since it was found.
        const std::vector<SocketAddress> untried = _Untried();
        if (untried.empty())
            _failure = "cannot reach " + _instrument.name + ": " + text.toStdString();
        else
            QTimer::singleShot(0, _context.get(), [this, untried] { _Dial(untried); });
    });
    _Dial(_addresses);
    std::vector<std::string> refusals;
    return Wait([this] { return _up; }, remaining(clock, _timeout_ms), "link to " + _instrument.name) &&
           _Sync(refusals, remaining(clock, _timeout_ms));
}

void Session::_Dial(const std::vector<SocketAddress>& addresses)
{
    for (const SocketAddress& address : addresses) {
        _tried.insert(address);
        _link->Connect(address.Presentation(), int(address.Scope()), address.Port());
    }
}

std::vector<SocketAddress> Session::_Untried() const
{
    std::vector<SocketAddress> untried;
    const auto found = _browser ? _browser->Lookup(_instrument.name) : nullptr;
    if (found)
        for (const SocketAddress& address : found->addresses)
            if (!_tried.count(address))
                untried.push_back(address);
    return untried;
}

bool Session::Sync(std::vector<std::string>& refusals)
{
    return _Sync(refusals, _timeout_ms);
}

bool Session::_Sync(std::vector<std::string>& refusals, int ms)
{
    _link->OnSendRawXML(std::string("<arvex>&") + kMark + ";</arvex>\n");
    const int mark = ++_syncs_sent;
    const bool served = Wait([&] { return _syncs_served >= mark; }, ms, "answer from " + _instrument.name);
    refusals.swap(_refusals);
    _refusals.clear();
    return served;
}

bool Session::Wait(const std::function<bool()>& done, int ms, const std::string& what)
{
    const bool happened = RunUntil([&] { return done() || !_failure.empty() || _lost; }, ms) && done();
    if (happened)
        return true;
    if (_failure.empty())
        _failure = _lost ? _instrument.name + " closed the link" :
                   Interrupted() ? "interrupted" :
                                   "no " + what + " within " + std::to_string((ms + 999) / 1000) + " s";
    return false;
}

void Session::_GotXMLLine(const std::string& line)
{
    if (line.find(std::string(kMark) + ";") != std::string::npos) {
        ++_syncs_served;
        return;
    }
    if (line.compare(0, 6, "<Error") != 0)
        return;
    const std::vector<std::string> refusals = Refusals(line);
    _refusals.insert(_refusals.end(), refusals.begin(), refusals.end());
}
