#pragma once
// A simulated instrument: its document, served as the instrument serves it, the world it
// measures, and the data records it sends. The per-model parts are the subclasses' operations.

#include <ctime>
#include <initializer_list>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "foundation/timestamp.h"
#include "sim/data_line.h"
#include "sim/plant.h"

class Configurable;
class ConfigurableBool;
class ConfigurableComposite;
class ConfigCfgClock;
class ConfigCfgNetwork;
class ConfigFactoryCmd;
class ConfigLightSource;
class ConfigModel;
class ConfigRate;

/// One simulated instrument, without any I/O of its own: messages go in through Serve, time
/// through Advance, and the lines for every client come out of TakeLines.
///
/// Serving a message: the command sections are set back to false and the clock section shows
/// the instrument's time; the message is applied and acted upon; the reply goes to the sender,
/// and what the message changed, commands left out, goes to every client. The document's changed
/// flags are clear between messages.
class SimInstrument {
public:
    /// What one message did.
    struct Served {
        std::string reply;    ///< the compact reply for the sender, one line; "" for none
        std::string changes;  ///< the &query_changes; form of what changed, one line; "" for nothing
        bool reboot = false;  ///< the message asked the instrument to restart
    };

    virtual ~SimInstrument() = default;

    /// An instrument of the model "tolvan", "morvik", "sarnel", "dravik", "quenta", "halden",
    /// "bremmel" or "ostrel" that calls itself `name`; null for any other model.
    static std::unique_ptr<SimInstrument> Make(const std::string& model, const std::string& name);

    /// The TCP port at which clients look for this model.
    virtual int DefaultPort() const = 0;
    /// Data records per second; 0 sends one only when polled.
    virtual int Rate() { return _rate; }
    /// Sets the rate, as the command line asks; false, and nothing set, for a rate the model lacks.
    /// Unless a model's document has its own rates, any rate from 0 to 40 per second.
    virtual bool SetRate(int hz);

    /// Serves one message line, as described above.
    Served Serve(const std::string& message);
    /// Answers one plain-text line (one that is not XML) for the sender alone: lines of text, or
    /// "" for none. Only a model with a text console answers; the others ignore such lines.
    virtual std::string ServeText(const std::string& /*line*/) { return ""; }
    /// The units and headers of the records now selected, one line each: a new client's first lines.
    std::string Headers() { return _Headers(); }
    /// Moves the instrument on to `now`, in seconds since it was made, and queues the records due.
    void Advance(double now);
    /// While held, the bulk stream (a raw capture) waits and the records go on: a client is
    /// behind, as the instrument's own link would be when its peer reads slowly.
    void HoldStream(bool hold) { _stream_held = hold; }
    /// The lines queued for every client since the last call: records, headers, events.
    std::string TakeLines();
    /// Starts over as after power-up: committed values back, the stream from its beginning.
    void Restart();

protected:
    /// An instrument that sends `rate` data records per second unless its document says otherwise.
    explicit SimInstrument(int rate = 1);

    /// The document's root.
    virtual Configurable& _Doc() = 0;
    /// Applies one message to the document and acts on what it asks.
    virtual void _Apply(std::istream& in, std::ostream& out) = 0;
    /// The sections of one-shot commands. They are false before each message, and what a message
    /// does to them is never reported as a change.
    virtual std::vector<ConfigurableComposite*> _Commands() = 0;
    // The sections that the models share, served alike by this class; null where a model lacks one.
    virtual ConfigModel* _Model() = 0;
    virtual ConfigCfgClock* _Clock() = 0;
    virtual ConfigCfgNetwork* _Network() = 0;
    virtual ConfigurableComposite* _Factory() = 0;
    /// Commit and rollback of the factory section. Without them the factory keeps what it is
    /// sent, across restarts too.
    virtual ConfigFactoryCmd* _FactoryCmd() = 0;
    virtual ConfigurableBool* _RebootCmd() = 0;
    /// Units and headers of the selected records, each a line.
    virtual std::string _Headers() = 0;
    /// Queues the data records of one sample taken at `time`.
    virtual void _SendData(double time) = 0;
    /// Queues the once-a-second records.
    virtual void _SendStatus(double time) = 0;
    /// Queues what goes out at every step of time, whatever the rate.
    virtual void _Stream() {}
    /// The model's part of a restart.
    virtual void _Restart() {}

    /// Ends the construction of a subclass: gives the instrument and its network `name`, and its
    /// clock the zones it offers; the state it is then in is what power-up gives, committed, and
    /// nothing counts as changed.
    void _PowerUp(const std::string& name);

    void _Send(const std::string& line) { _lines += line; }
    void _SendEvent(const std::string& event, const std::string& text);
    /// Connects or disconnects the light source at a command, telling every client by the events
    /// LIGHTSOURCECONNECTED and LIGHTSOURCEDISCONNECTED.
    void _ServeLightSource(bool connect, bool disconnect);
    bool _LightSourceConnected() const { return _light_source; }
    /// Selects the rate of `hz` among the rates of a document; false for a rate it lacks.
    static bool _SelectRate(ConfigRate& rate, int hz);
    /// The DATALTH header and a DATALT record of the light source: its mode, set point, what it gives
    /// (nothing while disconnected) and the leaf's transmittance.
    static const char* const LIGHT_SOURCE_HEADER;
    std::string _LightSourceRecord(const ConfigLightSource& source, double time);
    /// A diagnostic word: bit k set for bits[k].
    static int64_t _DiagWord(std::initializer_list<bool> bits);
    /// The three time fields that begin every record: MSEC (since power-up), SECONDS, NANOSECONDS.
    void _AddStamp(DataLine& line, double time) const;
    /// The two of them without MSEC: SECONDS, NANOSECONDS.
    void _AddClockStamp(DataLine& line, double time) const;
    /// The instrument's clock at `time` as seconds since 1970 with milliseconds, for records that
    /// carry their time in one field.
    void _AddClockSeconds(DataLine& line, double time) const;
    /// The instrument's clock at `time`, in seconds since 1970. Counted from the moment it was last
    /// set, so that a clock set to a whole second shows that second, not a hair less.
    double _ClockAt(double time) const { return _clock_set + (time - _clock_set_at); }
    /// The instrument's clock as date and time of the local zone: "2024-05-01T12:34:56.250".
    std::string _ClockText(double time) const;
    /// The instrument's clock now, to the second, in the local zone.
    Timestamp _ClockStamp() const;
    double _Now() const { return _now; }

    SimPlant _plant;

private:
    void _ServeSharedSections(Served& served);

    std::string _lines;
    std::string _sent_headers;
    std::string _committed_factory;
    double _clock_set;  ///< what the clock read at _clock_set_at
    double _clock_set_at = 0;
    double _now = 0;
    double _power_up = 0;
    int _data_rate = -1;
    double _data_origin = 0;  ///< when sample 0 of the present rate was due
    long long _data_sent = 0;
    long long _status_sent = 0;
    bool _light_source = false;
    bool _stream_held = false;
    int _rate;
};
