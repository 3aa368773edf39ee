#include "link/connector.h"

#include <QCoreApplication>
#include <QDate>
#include <QHostAddress>
#include <QMessageBox>
#include <QNetworkInterface>
#include <QTcpSocket>
#include <QTimer>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string_view>

#include "link/logdialog.h"

namespace {

bool is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// The white-space separated tokens of a line, read in turn.
class Tokens {
public:
    explicit Tokens(const std::string& line, size_t from = 0) : _line(line), _pos(from) {}

    bool next(std::string_view& token)
    {
        while (_pos < _line.size() && is_space(_line[_pos]))
            ++_pos;
        const size_t start = _pos;
        while (_pos < _line.size() && !is_space(_line[_pos]))
            ++_pos;
        token = std::string_view(_line).substr(start, _pos - start);
        return _pos > start;
    }
    size_t position() const { return _pos; }

private:
    const std::string& _line;
    size_t _pos;
};

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// A field as a fresh stream reads it, 0 when it does not parse. Kept out of the fast path.
template <class Number>
[[gnu::cold]] double stream_read(std::string_view token, std::ios_base& (*base)(std::ios_base&))
{
    std::istringstream in{std::string(token)};
    Number value;
    return in >> base >> value ? double(value) : 0.0;
}

// Plain numbers, all that instruments send, go through from_chars. Anything else ("1e", "+-5",
// "inf", overflow, trailing text) is left to a stream itself, so that the two cannot differ.
double parse_double(std::string_view token)
{
    // from_chars knows no "+" and takes "inf" and "nan", which a stream refuses.
    const size_t sign = !token.empty() && (token[0] == '+' || token[0] == '-');
    if (token.size() > sign && (is_digit(token[sign]) || token[sign] == '.')) {
        double value;
        const char* const last = token.data() + token.size();
        const auto [end, error] = std::from_chars(token.data() + (token[0] == '+'), last, value);
        if (error == std::errc() && end == last)
            return value;
    }
    return stream_read<double>(token, std::dec);
}

// Test records may carry 16-bit hexadecimal fields, "0x00ff".
double parse_test_field(std::string_view token)
{
    if (token.size() < 3 || token.substr(0, 2) != "0x")
        return parse_double(token);
    uint16_t value;
    const char* const last = token.data() + token.size();
    const auto [end, error] = std::from_chars(token.data() + 2, last, value, 16);
    if (error == std::errc() && end == last)
        return value;
    return stream_read<uint16_t>(token, std::hex);
}

void show_message_box(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox::information(parent, title, text, QMessageBox::Ok);
}

Connector::MessageBoxFunction& message_box()
{
    static Connector::MessageBoxFunction show = show_message_box;
    return show;
}

std::string default_log_file_name(const std::string& host)
{
    const QDate today = QDate::currentDate();
    char date[16];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", today.year(), today.month(), today.day());
    return host + "-" + date + ".txt";
}

}  // namespace

// --- Registry ---

std::map<std::string, std::shared_ptr<Connector>>& Connector::_registry()
{
    static std::map<std::string, std::shared_ptr<Connector>> registry;
    return registry;
}

void Connector::SetMessageBox(MessageBoxFunction show)
{
    message_box() = show ? std::move(show) : show_message_box;
}

std::shared_ptr<Connector> Connector::Factory(QWidget* parent, const std::string& name, const std::string& type)
{
    auto& registry = _registry();
    if (registry.empty() && QCoreApplication::instance()) {
        // Sockets must go before the application object does.
        QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, [] { _registry().clear(); });
    }
    const std::string key = VariableString(name, VariableString::HOST).host;
    auto it = registry.find(key);
    if (it != registry.end() && it->second.use_count() == 1 && !it->second->IsLogging()) {
        registry.erase(it);
        it = registry.end();
    }
    if (it == registry.end())
        it = registry.emplace(key, std::make_shared<Connector>(parent, key, type)).first;
    return it->second;
}

std::vector<std::shared_ptr<Connector>> Connector::Registered()
{
    std::vector<std::shared_ptr<Connector>> all;
    for (const auto& entry : _registry())
        all.push_back(entry.second);
    return all;
}

std::shared_ptr<Connector> Connector::LookupConnector(const std::string& spec)
{
    auto it = _registry().find(VariableString(spec, VariableString::HOST).host);
    return it == _registry().end() ? nullptr : it->second;
}

void Connector::LookupAndRegisterListener(const std::string& spec, Listener* listener)
{
    if (auto connector = LookupConnector(spec))
        connector->RegisterListener(spec, listener);
}

void Connector::LookupAndUnRegisterListener(Listener* listener)
{
    for (auto& entry : _registry())
        entry.second->UnRegisterListener(listener);
}

std::string Connector::LookupVarString(const std::string& spec)
{
    auto connector = LookupConnector(spec);
    return connector ? connector->VarString(spec) : std::string();
}

std::pair<double, double> Connector::LookupVarNumeric(const std::string& spec)
{
    auto connector = LookupConnector(spec);
    return connector ? std::make_pair(connector->_time, connector->VarNumeric(spec)) : std::make_pair(0.0, 0.0);
}

// --- Life ---

Connector::Connector(QWidget* parent, const std::string& name, const std::string& type)
    : _parent(parent), _host(VariableString(name, VariableString::HOST).host), _type(ConnectorType::Make(type)),
      _model(type), _socket(new QTcpSocket(this)), _send_timer(new QTimer(this)), _log_file_name(default_log_file_name(_host))
{
    _send_timer->setInterval(500);
    _send_timer->setSingleShot(true);
    for (const char* name : {"DATA", "DATACLOCKSYNC", "DATAGPS", "DATASONIC", "DATACH4"})
        _record_kinds[name] = RecData;
    _record_kinds["DATASTAT"] = RecStat;
    _record_kinds["DATACLOCK"] = RecClock;
    _record_kinds["DATATEST"] = RecTest;
    for (const char* name : {"DATAH", "DATASTATH", "DATALTH", "DATADIAGH", "DATATESTH", "DATACLOCKH",
                             "DATACLOCKSYNCH", "DATAGPSH", "DATASONICH", "DATACH4H"})
        _record_kinds[name] = RecHeader;
    for (const char* name : {"DATAR", "DATACELLA", "DATAS", "DATACELLB", "DATARDC", "DATASDC"})
        _record_kinds[name] = RecWaveform;
    _record_kinds["DATAEVENT"] = RecEvent;
    _record_kinds["DATAU"] = RecUnit;
    _record_kinds["DATAFLRAW"] = RecRaw;
    _built_in_kinds = _record_kinds.size();

    connect(_socket, &QTcpSocket::readyRead, this, &Connector::OnSocketRead);
    connect(_socket, &QTcpSocket::errorOccurred, this, &Connector::OnSocketError);
    connect(_socket, &QTcpSocket::connected, this, &Connector::OnSocketConnected);
    connect(_socket, &QTcpSocket::disconnected, this, &Connector::OnSocketDisconnected);
    connect(_send_timer, &QTimer::timeout, this, &Connector::OnSendXMLTimerTimeout);
}

Connector::~Connector()
{
    StopLoggingToFile();
    // The socket must not report into a half-destroyed connector.
    _socket->disconnect(this);
}

// --- Listeners ---

void Connector::RegisterListener(const std::string& spec, Listener* listener)
{
    if (!listener)
        return;
    const std::string record = VariableString(spec, VariableString::RECORD).record;
    _listeners[record].insert(listener);
    if (spec == "*H") {
        for (const auto& header : _headers)
            listener->GotConnectorHeaderMatch(*this, header.first);
    } else if (_headers.count(record)) {
        listener->GotConnectorHeader(*this, record);
    }
}

void Connector::UnRegisterListener(Listener* listener)
{
    if (!listener)
        return;
    for (auto& entry : _listeners)
        entry.second.erase(listener);
}

template <class Call>
void Connector::_Notify(const std::string& record, Call call)
{
    if (record.empty())
        return;
    auto it = _listeners.find(record);
    if (it == _listeners.end())
        return;
    for (Listener* listener : it->second)
        call(listener);
}

void Connector::_NotifyListenersOfData(const std::string& record)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorData(*this, record); });
    _Notify(record, [&](Listener* l) { l->GotConnectorDataPostUpdate(*this, record); });
}

void Connector::_NotifyListenersOfHeader(const std::string& record)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorHeader(*this, record); });
    _Notify("*H", [&](Listener* l) { l->GotConnectorHeaderMatch(*this, record); });
}

void Connector::_NotifyListenersOfUnit(const std::string& record)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorUnit(*this, record); });
}

void Connector::_NotifyListenersOfTime(const std::string& record, const std::string& token)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorTime(*this, record, token); });
}

void Connector::_NotifyListenersOfWaveform(const std::string& record, const std::string& line)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorWaveform(*this, record, line); });
}

void Connector::_NotifyListenersOfEvent(const std::string& record, const std::string& event, const std::string& rest)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorEvent(*this, record, event, rest); });
}

void Connector::_NotifyListenersOfRawData(const std::string& record, const std::string& line)
{
    _Notify(record, [&](Listener* l) { l->GotConnectorRawData(*this, record, line); });
}

// --- Values ---

#define SONDAR_DOC_ACCESSORS(Model)                                                                  \
    Doc##Model& Connector::Doc_##Model() { return dynamic_cast<Doc##Model&>(_type->Doc()); }            \
    const Doc##Model& Connector::Doc_##Model() const { return dynamic_cast<const Doc##Model&>(_type->Doc()); }
SONDAR_DOC_ACCESSORS(Tolvan)
SONDAR_DOC_ACCESSORS(Morvik)
SONDAR_DOC_ACCESSORS(Halden)
SONDAR_DOC_ACCESSORS(Dravik)
SONDAR_DOC_ACCESSORS(Quenta)
SONDAR_DOC_ACCESSORS(Bremmel)
SONDAR_DOC_ACCESSORS(Ostrel)
#undef SONDAR_DOC_ACCESSORS

double Connector::VarNumeric(const std::string& spec) const
{
    auto it = _numerics.find(VariableString(spec, VariableString::RECORD).str());
    return it == _numerics.end() ? 0.0 : it->second;
}

std::string Connector::VarString(const std::string& spec) const
{
    const VariableString var(spec, VariableString::RECORD);
    if (var.host != _host)
        return "";
    auto names = _headers.find(var.record);
    auto texts = _strings.find(var.record);
    if (names == _headers.end() || texts == _strings.end())
        return "";
    const size_t n = std::min(names->second.size(), texts->second.size());
    for (size_t i = 0; i < n; ++i)
        if (names->second[i] == var.variable)
            return texts->second[i];
    return "";
}

const std::vector<std::string>& Connector::VarStrings(const std::string& spec) const
{
    auto it = _strings.find(VariableString(spec, VariableString::RECORD).record);
    return it == _strings.end() ? _empty : it->second;
}

const std::vector<std::string>& Connector::Header(const std::string& spec) const
{
    auto it = _headers.find(VariableString(spec, VariableString::RECORD).record);
    return it == _headers.end() ? _empty : it->second;
}

const std::vector<std::string>& Connector::Unit(const std::string& spec) const
{
    auto it = _units.find(VariableString(spec, VariableString::RECORD).record);
    return it == _units.end() ? _empty : it->second;
}

// --- The data stream ---

bool Connector::VerifyCheckSum(const std::string& line)
{
    size_t length = line.size();
    if (length > 0 && line.back() == '\n')
        --length;
    if (length < 3)
        return false;
    const size_t n = length - 3;
    unsigned sum = 0;
    for (size_t i = 0; i < n; ++i)
        sum += static_cast<unsigned char>(line[i]);
    sum &= 0xff;
    // The sum is read as a stream reads an integer: white space skipped, always decimal, 0 if none.
    size_t pos = n;
    while (pos < line.size() && is_space(line[pos]))
        ++pos;
    if (pos < line.size() && line[pos] == '+')
        ++pos;
    long written = 0;
    std::from_chars(line.data() + pos, line.data() + line.size(), written);
    return written == long(sum);
}

RecordKind Connector::RecordType(const std::string& name)
{
    auto it = _record_kinds.find(name);
    if (it != _record_kinds.end())
        return it->second;
    if (name.size() < 4 || name.compare(0, 4, "DATA") != 0)
        return RecUnknown;
    const bool header = name.back() == 'H';
    const std::string data = header ? name.substr(0, name.size() - 1) : name;
    // Names made up without end must not grow the tables without end.
    const size_t learning = header && !_record_kinds.count(data) ? 2 : 1;
    if (_record_kinds.size() - _built_in_kinds + learning > MAX_LEARNED_RECORDS)
        return RecUnknown;
    // A new family: the header names a data record, whatever that record was before.
    _record_kinds[data] = RecData;
    if (!header)
        return RecData;
    return _record_kinds[name] = RecHeader;
}

void Connector::HandleData(const std::string& line)
{
    Tokens tokens(line);
    std::string_view token;
    if (!tokens.next(token))
        return;
    const std::string record(token);
    const RecordKind kind = RecordType(record);
    const bool checked = kind == RecData || kind == RecStat || kind == RecTest;
    if (checked && !VerifyCheckSum(line)) {
        ++_counters.bad_lines;
        _Notify(record, [&](Listener* l) { l->GotConnectorBadChecksum(*this, record); });
        return;
    }
    if (kind != RecUnknown)
        ++_counters.records;
    switch (kind) {
    case RecData:
    case RecStat:
    case RecTest: {
        _LogToFile(kind, record, line);
        std::vector<std::string>& texts = _strings[record];
        Cells& cells = _cells[record];
        for (size_t i = 0; i < cells.size() && tokens.next(token); ++i) {
            texts[i].assign(token);
            *cells[i] = kind == RecTest ? parse_test_field(token) : parse_double(token);
        }
        if (kind == RecTest) {
            _time = _type->TestRecordTime(record, cells);
        } else {
            if (cells.size() < 3)
                return;
            _time = _type->RecordTime(record, cells);
            if (kind == RecStat && _diagnostic_index != 0)
                _UnpackDiagnostics();
        }
        _NotifyListenersOfData(record);
        return;
    }
    case RecHeader:
        _HandleHeader(record, tokens.position(), line);
        return;
    case RecClock:
        _LogToFile(kind, record, line);
        if (tokens.next(token))
            _NotifyListenersOfTime(record, std::string(token));
        return;
    case RecWaveform:
        _LogToFile(kind, record, line);
        _NotifyListenersOfWaveform(record, line);
        return;
    case RecEvent: {
        _LogToFile(kind, record, line);
        std::string event, rest;
        if (tokens.next(token)) {
            event.assign(token);
            _StoreEvent(event, line);
            const size_t start = std::min(tokens.position() + 1, line.size());
            rest = line.substr(start, line.find('\n', start) - start);
        }
        _NotifyListenersOfEvent(record, event, rest);
        return;
    }
    case RecUnit: {
        std::vector<std::string>& units = _units[record];
        units.clear();
        while (tokens.next(token))
            units.emplace_back(token);
        _NotifyListenersOfUnit(record);
        return;
    }
    case RecRaw:
        _NotifyListenersOfRawData(record, line);
        return;
    case RecUnknown:
        return;
    }
}

void Connector::_StoreEvent(const std::string& event, const std::string& line)
{
    auto stored = _lines.find(event);
    if (stored != _lines.end()) {
        stored->second = line;
    } else if (_event_words < MAX_EVENT_WORDS) {
        _lines.emplace(event, line);
        ++_event_words;
    }
}

void Connector::_HandleHeader(const std::string& record, size_t fields_at, const std::string& line)
{
    const std::string data = record.substr(0, record.size() - 1);
    std::vector<std::string>& texts = _strings[data];
    Cells& cells = _cells[data];
    std::vector<std::string>& names = _headers[record];
    texts.clear();
    cells.clear();
    names.clear();
    _LogToFile(RecHeader, record, line);
    _lines[record] = line;
    Tokens tokens(line, fields_at);
    std::string_view token;
    while (tokens.next(token)) {
        if (token == "DIAG" && record == "DATASTATH")
            _diagnostic_index = unsigned(names.size());
        names.emplace_back(token);
        texts.emplace_back();
        double& number = _numerics[VariableString(_host, data, names.back()).str()];
        number = 0.0;
        cells.push_back(&number);
    }
    _NotifyListenersOfHeader(record);
}

void Connector::_UnpackDiagnostics()
{
    const std::vector<std::string>& names = _headers["DATADIAGH"];
    std::vector<std::string>& texts = _strings["DATADIAG"];
    Cells& cells = _cells["DATADIAG"];
    if (!names.empty()) {
        const Cells& stat = _cells["DATASTAT"];
        const double number = _diagnostic_index < stat.size() ? *stat[_diagnostic_index] : 0.0;
        const uint32_t word = std::isfinite(number) && std::fabs(number) < 9.2e18 ? uint32_t(int64_t(number)) : 0;
        const size_t n = std::min({names.size(), texts.size(), cells.size()});
        for (size_t k = 0; k < n; ++k) {
            const bool bit = (word >> (k % 32)) & 1;
            *cells[k] = bit ? 1.0 : 0.0;
            texts[k] = bit ? "1" : "0";
        }
    }
    _NotifyListenersOfData("DATADIAG");
}

// --- The socket ---

void Connector::Connect(const std::string& address, int scope, int port)
{
    _connect_queue.push_back({address, scope, port});
    _TryConnect();
}

void Connector::_TryConnect()
{
    if (_socket->state() != QAbstractSocket::UnconnectedState || _connect_queue.empty())
        return;
    const _ConnectInfo target = _connect_queue.front();
    _connect_queue.pop_front();
    _Connect(target.address, target.scope, target.port);
}

void Connector::_Connect(const std::string& address, int scope, int port)
{
    QHostAddress host(QString::fromStdString(address));
    if (scope >= 1 && host.protocol() == QAbstractSocket::IPv6Protocol) {
        const QNetworkInterface iface = QNetworkInterface::interfaceFromIndex(scope);
        if (iface.isValid())
            host.setScopeId(iface.name());
    }
    _socket->connectToHost(host, quint16(port), QIODevice::ReadWrite);
    _last_target = {address, scope, port};
    _connected_to = _last_target.Text();
}

std::string Connector::Target::Text() const
{
    return address + (scope != 0 ? "%" + std::to_string(scope) : "") + ":" + std::to_string(port);
}

void Connector::Disconnect()
{
    _connect_queue.clear();
    _socket->disconnectFromHost();
    _connected_to.clear();
}

bool Connector::IsConnected() const
{
    return _socket->state() == QAbstractSocket::ConnectedState;
}

bool Connector::IsIdle() const
{
    return _socket->state() == QAbstractSocket::UnconnectedState;
}

void Connector::_Write(const std::string& text)
{
    _socket->write(text.data(), qint64(text.size()));
}

void Connector::OnSocketRead()
{
    const QByteArray data = _socket->readAll();
    _line_framer.AppendRawData(data.constData(), size_t(data.size()));
    const uint64_t records = _counters.records;
    std::string line;
    while (_line_framer.GetNextStringToEOL(line)) {
        if (line.empty())
            continue;
        if (line[0] == '<')
            HandleXML(line);
        else
            HandleData(line);
    }
    // The records of one read arrived together.
    if (_counters.records != records)
        _counters.last_record = LinkClock::now();
}

void Connector::OnSocketError(QAbstractSocket::SocketError error)
{
    const QString title = "Connect To Instrument";
    QString text;
    switch (error) {
    case QAbstractSocket::RemoteHostClosedError:
        return;
    case QAbstractSocket::ConnectionRefusedError:
        text = "The connection was refused by the peer. Make sure the instrument is running, and check that "
               "the host name and port settings are correct.";
        break;
    case QAbstractSocket::HostNotFoundError:
        text = "The host was not found. Please check the host name and port settings.";
        break;
    case QAbstractSocket::NetworkError:
        text = "Network error while trying to connect to:" + QString::fromStdString(_host);
        break;
    default:
        if (!_dial_failures_shown)
            return;
        message_box()(_parent, title,
                      QString("The following error occurred: %1. (%2)").arg(_socket->errorString()).arg(int(error)));
        return;
    }
    if (!_connect_queue.empty())
        _TryConnect();
    else if (_dial_failures_shown)
        message_box()(_parent, title, text);
}

void Connector::OnSocketConnected()
{
    _Write("<arvex>&query_doctype;</arvex>\n");
    _Write("<arvex>&query_changes;</arvex>\n");
    _Write("<arvex>&query;</arvex>\n");
    _Write(_type->OutputSelection());
    // A reader of the log must see where the stream stopped and started again.
    if (_counters.connections++ > 0)
        _LogToFile(RecEvent, "DATAEVENT", LinkGapLine(_counters.down_since, LinkClock::now()));
    emit Connected();
}

void Connector::OnSocketDisconnected()
{
    _counters.down_since = LinkClock::now();
    emit Disconnected();
}

// --- The document ---

void Connector::HandleXML(const std::string& line)
{
    Configurable& doc = _type->Doc();
    std::istringstream in(line);
    std::ostringstream reply;  // the program does not answer the instrument
    doc._set_changed(false);
    try {
        doc.configure(in, reply);
    } catch (const std::exception&) {
        // A message the document refuses by exception is dropped like any other fault of the stream.
    }
    if (doc.has_changed()) {
        emit GotXMLChanges();
        doc._set_changed(false);
    }
    emit GotXMLLine(line);
}

void Connector::OnSendXMLChanges()
{
    if (_send_timer->isActive())
        return;
    OnSendXMLTimerTimeout();
    _send_timer->start();
}

void Connector::OnSendXMLTimerTimeout()
{
    Configurable& doc = _type->Doc();
    if (!doc.has_changed())
        return;
    std::ostringstream out;
    Configurable::set_compact(out, true);
    doc.changed(out);
    out << '\n';
    if (_socket->state() == QAbstractSocket::ConnectedState)
        _Write(out.str());
    emit GotXMLChanges();
    doc._set_changed(false);
}

void Connector::OnForceXMLUpdate()
{
    emit GotXMLChanges();
}

void Connector::OnSendRawXML(std::string text)
{
    if (!text.empty() && _socket->state() == QAbstractSocket::ConnectedState)
        _Write(text);
}

void Connector::SendClockSyncMessages(bool on)
{
    _Write(_type->ClockSyncSelection(on));
}

// --- Logging ---

void Connector::_LogToFile(int kind, const std::string& record, const std::string& line)
{
    if (kind == RecData || kind == RecStat)
        _last_data_lines[record] = line;
    if (_log_file.is_open() && _log_continuous)
        _WriteLog(line);
}

void Connector::_WriteLog(const std::string& text)
{
    _log_file << text;
    _counters.bytes_logged += text.size();
}

void Connector::StartLoggingToFile()
{
    if (_log_file.is_open())
        StopLoggingToFile();
    _log_file.clear();
    _log_file.open(_log_file_name, std::ios::out | std::ios::binary | std::ios::trunc);
    if (!_log_file.is_open())
        return;
    _counters.bytes_logged = 0;
    for (const auto& entry : _lines)
        if (entry.second.size() >= 9 && entry.second.compare(0, 9, "DATAEVENT") == 0)
            _WriteLog(entry.second);
    for (const auto& entry : _lines)
        if (entry.second.find("DATAEVENT") == std::string::npos)
            _WriteLog(entry.second);
}

void Connector::StopLoggingToFile()
{
    if (!_log_file.is_open())
        return;
    _log_file.flush();
    _log_file.close();
}

void Connector::LogDataNow()
{
    if (!_log_file.is_open() || _log_continuous)
        return;
    for (const auto& entry : _last_data_lines)
        _WriteLog(entry.second);
}

std::string Connector::LookupEvent(const std::string& name) const
{
    auto it = _lines.find(name);
    return it == _lines.end() ? std::string() : it->second;
}

void Connector::ShowLogDialog()
{
    if (!_log_dialog) {
        _log_dialog = new LogDialog(_parent, _host, LookupConnector(_host));
        if (_parent && _parent->metaObject()->indexOfSlot("OnRefresh()") >= 0)
            connect(_log_dialog, SIGNAL(LogStatusChanged()), _parent, SLOT(OnRefresh()));
    }
    _log_dialog->show();
    _log_dialog->activateWindow();
    _log_dialog->raise();
}
