#include "logd/stationlogger.h"

#include <algorithm>
#include <iostream>

#include "link/connector.h"
#include "link/redialer.h"
#include "store/recorder.h"

namespace {

// How good an announced address is to dial: IPv4, then IPv6 link-local (with its interface), then
// any other IPv6 (which a service on IPv4 alone does not answer).
int rank(const SocketAddress& address)
{
    return address.Family() == Socket::IPv4 ? 2 : address.IsLinkLocal() ? 1 : 0;
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

}  // namespace

// One instrument: its link, its redialer, and how each of its records becomes a row.
class StationLogger::Tap : public QObject, public Connector::Listener {
public:
    Tap(Recorder& recorder, const std::set<std::string>& records, const NamedInstrument& instrument)
        : _recorder(recorder), _records(records), _name(instrument.name), _model(instrument.model),
          _address(instrument.address), _link(Connector::Factory(nullptr, instrument.name, instrument.model)),
          _redialer(*_link)
    {
        connect(_link.get(), &Connector::Connected, this,
                [this] { _recorder.Add(Event{_name, now_us(), "connected", _link->ConnectedTo()}); });
        connect(_link.get(), &Connector::Disconnected, this,
                [this] { _recorder.Add(Event{_name, now_us(), "disconnected", ""}); });
        _link->RegisterListener("*H", this);
        _link->RegisterListener("DATAEVENT", this);
        if (_Wants("DATACLOCK"))
            _link->RegisterListener("DATACLOCK", this);
        _Dial();
    }
    ~Tap() override { _link->UnRegisterListener(this); }

    bool IsConnected() const { return _link->IsConnected(); }

    /// Another address of the instrument: dialed from now on if it is a better one.
    void Offer(const SocketAddress& address)
    {
        if (rank(address) <= rank(_address))
            return;
        _address = address;
        _Dial();
    }

    // A header names the columns of its data record; the data record is listened to from now on.
    void GotConnectorHeaderMatch(Connector& link, std::string header) override
    {
        const std::string record = header.substr(0, header.size() - 1);
        if (!_Wants(record))
            return;
        Plan& plan = _plans[record];
        plan.table = _model + "_" + lower(record);
        auto columns = std::make_shared<std::vector<std::string>>();
        plan.places.clear();
        // The checksum is no value; a name the header repeats is one column, the later value wins.
        for (const std::string& field : link.Header(header)) {
            const std::string column = lower(field);
            const auto known = std::find(columns->begin(), columns->end(), column);
            if (column == "chk" || column == "instrument_id" || column == "received_at" || column == "record_time") {
                plan.places.push_back(-1);
            } else {
                plan.places.push_back(int(known - columns->begin()));
                if (known == columns->end())
                    columns->push_back(column);
            }
        }
        plan.columns = columns;
        // Another record than the one being told about: the connector allows it.
        link.RegisterListener(record, this);
    }

    void GotConnectorData(Connector& link, std::string record) override
    {
        const auto found = _plans.find(record);
        if (found == _plans.end())
            return;
        const Plan& plan = found->second;
        Row row{_name, plan.table, plan.columns, now_us(), link.Time(), {}};
        row.values.resize(plan.columns->size());
        const std::vector<std::string>& texts = link.VarStrings(record);
        for (size_t i = 0; i < texts.size() && i < plan.places.size(); ++i)
            if (plan.places[i] >= 0)
                row.values[size_t(plan.places[i])] = texts[i];
        _recorder.Add(std::move(row));
    }

    void GotConnectorTime(Connector& link, std::string record, std::string time) override
    {
        static const auto columns = std::make_shared<const std::vector<std::string>>(1, "time");
        _recorder.Add(Row{_name, _model + "_" + lower(record), columns, now_us(), link.Time(), {time}});
    }

    void GotConnectorEvent(Connector&, std::string, std::string event, std::string rest) override
    {
        _recorder.Add(Event{_name, now_us(), "event", rest.empty() ? event : event + " " + rest});
    }

private:
    struct Plan {
        std::string table;
        std::shared_ptr<const std::vector<std::string>> columns;
        std::vector<int> places;  // per header field: its column, or -1 when it is not kept
    };

    void _Dial()
    {
        _recorder.Add(InstrumentEntry{_name, _model, _address.Presentation(), _address.Port()});
        _redialer.Dial(_address.Presentation(), int(_address.Scope()), _address.Port());
    }

    bool _Wants(const std::string& record)
    {
        // DATADIAG is the connector's own unpacking of DATASTAT's DIAG field.
        if (record == "DATADIAG")
            return false;
        if (!_records.empty())
            return _records.count(record) > 0;
        const RecordKind kind = _link->RecordType(record);
        return kind == RecData || kind == RecStat || kind == RecTest || kind == RecClock;
    }

    Recorder& _recorder;
    const std::set<std::string>& _records;
    const std::string _name, _model;
    SocketAddress _address;
    std::shared_ptr<Connector> _link;
    Redialer _redialer;
    std::map<std::string, Plan> _plans;
};

StationLogger::StationLogger(Recorder& recorder, std::set<std::string> records)
    : _recorder(recorder), _records(std::move(records))
{
}

StationLogger::~StationLogger() = default;

bool StationLogger::Add(const NamedInstrument& instrument)
{
    if (_taps.count(instrument.name))
        return false;
    _taps[instrument.name] = std::make_unique<Tap>(_recorder, _records, instrument);
    return true;
}

void StationLogger::Browse()
{
    _client = std::make_unique<BonjourClient>(this);
    for (const std::string& model : NamedInstrument::Models())
        _client->Browse(NamedInstrument::ServiceTypeOf(model));
}

int StationLogger::Connected() const
{
    return int(std::count_if(_taps.begin(), _taps.end(), [](const auto& tap) { return tap.second->IsConnected(); }));
}

void StationLogger::AddService(std::string name, std::string type, std::string, unsigned, std::string,
                               const SocketAddress& address, const std::map<std::string, std::string>&)
{
    if (!type.empty() && type.back() == '.')
        type.pop_back();
    // An instrument named by hand keeps the address it was given.
    if (_browsed.count(name))
        _taps[name]->Offer(address);
    else
        for (const std::string& model : NamedInstrument::Models())
            if (NamedInstrument::ServiceTypeOf(model) == type && Add(NamedInstrument{name, model, address}))
                _browsed.insert(name);
}

bool StationLogger::ServiceError(std::string message)
{
    std::cerr << "sondar-logd: " << message << std::endl;
    return false;
}
