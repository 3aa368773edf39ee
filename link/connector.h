#pragma once
// The one live link to one instrument: its socket, its document replica, the latest value of
// every data field, its log file and its listeners. Windows share a Connector through the
// registry: Factory gives the second window on an instrument the first one's connector.
//
// The stream interleaves XML lines (first byte "<", applied to the document) and data lines:
// a record name and fields separated by white space, checked by an 8-bit sum in the last three
// characters. A header record ("DATAH") names the fields of its data record ("DATA").

#include <QObject>
#include <QAbstractSocket>

#include <deque>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "link/connectortype.h"
#include "link/delimparser.h"
#include "link/linkhealth.h"
#include "link/variablestring.h"

class QTcpSocket;
class QTimer;
class QWidget;
class LogDialog;

/// The classes of record names.
enum RecordKind {
    RecData,      ///< values named by a header, checksummed
    RecStat,      ///< the same, carrying the diagnostic word
    RecClock,     ///< a time stamp
    RecTest,      ///< like RecData, hexadecimal fields allowed
    RecHeader,    ///< names the fields of a data record
    RecWaveform,  ///< a sampled curve, passed on whole
    RecEvent,     ///< an event line
    RecUnit,      ///< unit words
    RecRaw,       ///< a raw capture chunk, passed on whole
    RecUnknown,   ///< ignored
};

class Connector : public QObject {
    Q_OBJECT

public:
    /// Told about records as they arrive; every operation does nothing unless overridden.
    /// A listener must not register or unregister from inside a notification, except to register
    /// for another record than the one being told about.
    class Listener {
    public:
        virtual ~Listener() = default;
        virtual void GotConnectorEvent(Connector&, std::string /*record*/, std::string /*event*/, std::string /*rest*/) {}
        virtual void GotConnectorHeader(Connector&, std::string /*record*/) {}
        virtual void GotConnectorUnit(Connector&, std::string /*record*/) {}
        /// For listeners of "*H": any header.
        virtual void GotConnectorHeaderMatch(Connector&, std::string /*record*/) {}
        virtual void GotConnectorData(Connector&, std::string /*record*/) {}
        /// After every listener of the record has had GotConnectorData.
        virtual void GotConnectorDataPostUpdate(Connector&, std::string /*record*/) {}
        virtual void GotConnectorTime(Connector&, std::string /*record*/, std::string /*time*/) {}
        virtual void GotConnectorWaveform(Connector&, std::string /*record*/, std::string /*line*/) {}
        virtual void GotConnectorRawData(Connector&, std::string /*record*/, std::string /*line*/) {}
        /// A line of the record was dropped: its checksum did not hold.
        virtual void GotConnectorBadChecksum(Connector&, std::string /*record*/) {}
    };

    /// Shows a connection failure: a message box unless replaced (tests replace it; null restores it).
    using MessageBoxFunction = std::function<void(QWidget* parent, const QString& title, const QString& text)>;
    static void SetMessageBox(MessageBoxFunction show);

    /// The connector registered for the host part of `name`, made with `type` if there is none.
    /// A registered connector that nobody else holds and that logs nothing is replaced.
    static std::shared_ptr<Connector> Factory(QWidget* parent, const std::string& name, const std::string& type);
    /// The connector of the host part of `spec`, or null.
    static std::shared_ptr<Connector> LookupConnector(const std::string& spec);
    static void LookupAndRegisterListener(const std::string& spec, Listener* listener);
    /// Removes the listener from every registered connector.
    static void LookupAndUnRegisterListener(Listener* listener);
    /// The latest text of host:record:field; empty for an unknown host.
    static std::string LookupVarString(const std::string& spec);
    /// (time, value) of host:record:field; (0, 0) for an unknown host.
    static std::pair<double, double> LookupVarNumeric(const std::string& spec);
    /// Every registered connector, in name order.
    static std::vector<std::shared_ptr<Connector>> Registered();

    Connector(QWidget* parent, const std::string& name, const std::string& type);
    ~Connector() override;

    /// Listens to the record part of `spec`; "*H" listens to every header. A newcomer is told at
    /// once about the headers that went by.
    void RegisterListener(const std::string& spec, Listener* listener);
    void UnRegisterListener(Listener* listener);

    /// Queues a target and dials it when the socket is free. A failed dial falls through to the
    /// next queued target; there is no reconnection.
    void Connect(const std::string& address, int scope, int port);
    void Disconnect();
    /// The link is up: connected and not yet lost.
    bool IsConnected() const;
    /// Neither connected nor dialing.
    bool IsIdle() const;
    /// Whether a failed dial is shown in a message box (the default) or passes silently, as while
    /// a Redialer keeps trying.
    void SetDialFailuresShown(bool shown) { _dial_failures_shown = shown; }
    /// A dialling target: a numeric address, an IPv6 interface index or 0, and a port.
    struct Target {
        std::string address;
        int scope = 0;
        int port = 0;
        /// "169.254.1.2:4410", or "fe80::1%4:4410" with a scope.
        std::string Text() const;
    };
    /// The target last dialled, kept after Disconnect; port 0 before the first dial.
    const Target& LastTarget() const { return _last_target; }
    /// The address last dialled, "169.254.1.2:4410" or "fe80::1%4:4410"; empty after Disconnect.
    const std::string& ConnectedTo() const { return _connected_to; }
    const std::string& Host() const { return _host; }
    std::string Type() const { return _type->TypeName(); }
    /// The type word the connector was made with ("halden", where Type() says "dravik").
    const std::string& Model() const { return _model; }
    /// What the link has seen: records, bad lines, bytes logged, when it went down.
    const LinkCounters& Counters() const { return _counters; }

    /// The document as its model's class; std::bad_cast for a connector of another model.
    DocTolvan& Doc_Tolvan();
    const DocTolvan& Doc_Tolvan() const;
    DocMorvik& Doc_Morvik();  ///< the Morvik and the Sarnel
    const DocMorvik& Doc_Morvik() const;
    DocHalden& Doc_Halden();
    const DocHalden& Doc_Halden() const;
    DocDravik& Doc_Dravik();
    const DocDravik& Doc_Dravik() const;
    DocQuenta& Doc_Quenta();
    const DocQuenta& Doc_Quenta() const;
    DocBremmel& Doc_Bremmel();
    const DocBremmel& Doc_Bremmel() const;
    DocOstrel& Doc_Ostrel();
    const DocOstrel& Doc_Ostrel() const;
    Configurable& Doc() { return _type->Doc(); }

    /// The latest number of host:record:field; 0 when unknown.
    double VarNumeric(const std::string& spec) const;
    std::string VarString(const std::string& spec) const;
    /// The latest field texts of a data record ("DATA").
    const std::vector<std::string>& VarStrings(const std::string& spec) const;
    /// The field names of a header record ("DATAH").
    const std::vector<std::string>& Header(const std::string& spec) const;
    const std::vector<std::string>& Unit(const std::string& spec) const;
    /// The time of the latest record.
    double Time() const { return _time; }

    void SendClockSyncMessages(bool on);

    /// Record names learned from the stream beyond the built-in ones: past these a new name is
    /// unknown, and its lines are dropped like any other fault of the stream.
    static constexpr size_t MAX_LEARNED_RECORDS = 1024;
    /// Event words whose latest line is kept for LookupEvent and the log file's head; later new
    /// words are still logged and told to listeners.
    static constexpr size_t MAX_EVENT_WORDS = 256;

    void HandleData(const std::string& line);
    void HandleXML(const std::string& line);
    RecordKind RecordType(const std::string& name);
    static bool VerifyCheckSum(const std::string& line);

    // Logging: the stream's lines as they came, headers and events first; a link that comes back
    // after a loss is marked by an event line (LinkGapLine).
    void ShowLogDialog();
    /// Opens (emptying) the file named by LogFileName and writes the stored events and headers.
    void StartLoggingToFile();
    void StopLoggingToFile();
    /// In on-button mode, writes the latest line of every data record.
    void LogDataNow();
    bool IsLogging() const { return _log_file.is_open(); }
    const std::string& LogFileName() const { return _log_file_name; }
    void SetLogFileName(const std::string& name) { _log_file_name = name; }
    bool LogContinuous() const { return _log_continuous; }
    void SetLogContinuous(bool on) { _log_continuous = on; }
    /// The line stored under an event name, or "".
    std::string LookupEvent(const std::string& name) const;

signals:
    void Connected();
    void Disconnected();
    // Part of the interface that windows may connect to; the connector itself never emits them.
    void GotDataLabel(int row, int col, std::string label);
    void GotDataValue(int row, int col, double x, double y, std::string name);
    void GotDataString(int row, int col, std::string text);
    void GotDataEnd();
    void GotDataS(std::string line);
    void GotDataR(std::string line);
    void GotDataSDC(std::string line);
    void GotDataRDC(std::string line);
    /// The document changed, by a message from the instrument or by changes just sent.
    void GotXMLChanges();
    /// Any XML line from the instrument, after the document has taken it: an answer, a report of
    /// changes, or an <Error> that the document itself does not keep.
    void GotXMLLine(std::string line);

public slots:
    void OnSocketRead();
    void OnSocketError(QAbstractSocket::SocketError error);
    void OnSocketConnected();
    void OnSocketDisconnected();
    void OnSendXMLChanges();
    void OnSendRawXML(std::string text);
    void OnSendXMLTimerTimeout();
    void OnForceXMLUpdate();

private:
    struct _ConnectInfo {
        std::string address;
        int scope;
        int port;
    };
    using Cells = ConnectorType::Cells;

    void _TryConnect();
    void _Connect(const std::string& address, int scope, int port);
    void _Write(const std::string& text);
    void _LogToFile(int kind, const std::string& record, const std::string& line);
    void _WriteLog(const std::string& text);
    void _UnpackDiagnostics();
    /// Keeps the latest line of an event word, up to MAX_EVENT_WORDS words.
    void _StoreEvent(const std::string& event, const std::string& line);
    void _HandleHeader(const std::string& record, size_t fields_at, const std::string& line);

    void _NotifyListenersOfData(const std::string& record);
    void _NotifyListenersOfHeader(const std::string& record);
    void _NotifyListenersOfUnit(const std::string& record);
    void _NotifyListenersOfTime(const std::string& record, const std::string& token);
    void _NotifyListenersOfWaveform(const std::string& record, const std::string& line);
    void _NotifyListenersOfEvent(const std::string& record, const std::string& event, const std::string& rest);
    void _NotifyListenersOfRawData(const std::string& record, const std::string& line);
    template <class Call>
    void _Notify(const std::string& record, Call call);

    static std::map<std::string, std::shared_ptr<Connector>>& _registry();

    std::deque<_ConnectInfo> _connect_queue;
    QWidget* _parent;
    std::string _host;
    std::unique_ptr<ConnectorType> _type;
    std::string _model;
    std::string _connected_to;
    Target _last_target;
    LinkCounters _counters;
    QTcpSocket* _socket;
    QTimer* _send_timer;
    DelimParser _line_framer;

    std::string _log_file_name;
    std::ofstream _log_file;
    LogDialog* _log_dialog = nullptr;
    bool _log_continuous = true;
    bool _dial_failures_shown = true;
    std::map<std::string, std::string> _last_data_lines;

    std::map<std::string, RecordKind> _record_kinds;
    size_t _built_in_kinds = 0;
    size_t _event_words = 0;
    std::map<std::string, std::vector<std::string>> _headers;
    std::map<std::string, std::vector<std::string>> _units;
    std::map<std::string, std::vector<std::string>> _strings;
    std::map<std::string, double> _numerics;
    std::map<std::string, Cells> _cells;
    double _time = 0;
    std::map<std::string, std::string> _lines;
    unsigned _diagnostic_index = 0;
    std::map<std::string, std::set<Listener*>> _listeners;
    const std::vector<std::string> _empty;
};
