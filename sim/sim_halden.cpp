#include "sim/sim_halden.h"

#include <QString>

#include <cmath>

namespace {

// Indices of `rawdatacapture`/`when`.
constexpr int WHEN_NOW = 0, WHEN_MEASURE = 1, WHEN_FLASH = 2, WHEN_DARK = 3;
constexpr double FLASH_SECONDS = 1.0;

const char* const HEADERS = "DATAU\ts\tcounts\tcounts\t-\tumol/m^2/s\t-\n"
                            "DATAH\tTIME\tDC\tPC\tF\tPPFD\tCHK\n";
const char* const STATUS_HEADERS = "DATASTATH\tTIME\tDIAG\tBOARDTEMP\tFANDUTY\tCHK\n"
                                   "DATADIAGH\tFLASHING\tCAPTURING\tREDMODOFF\tTESTVECTOR\n";
const char* const TEST_HEADER = "DATATESTH\tTIME\tCOUNT\tDC\tPC\tCHK\n";

}  // namespace

SimHalden::SimHalden(const std::string& name) : SimInstrument(2)
{
    _doc.Conf().Ver().set("1.0-sim");
    _PowerUp(name);
}

void SimHalden::_Apply(std::istream& in, std::ostream& out)
{
    _doc.configure_and_send_events(in, out);
    ConfigCmdHalden& cmd = _doc.Conf().Cmd();
    ConfigCalHalden& cal = _doc.Conf().Cal();

    if (cmd.Zero_dc0().get() || cmd.Zero_pc0().get()) {
        // With the sources off the detector reads its own offset.
        const bool dc = cmd.Zero_dc0().get();
        ConfigurableInteger& zero = dc ? cal.DC0() : cal.Pc0();
        zero.set(std::llround((dc ? 412.0 : 37.0) + _plant.Noise(2.0)));
        const std::string type = dc ? "DC0 Zero" : "Pc0 Zero";
        _doc.Conf().History().add(*new ConfigCalRecordHalden(_ClockStamp(), type, cal.DC0().get(), cal.Pc0().get()));
        _SendEvent(dc ? "ZERODC0" : "ZEROPC0", type + " " + std::to_string(zero.get()));
    }
    const struct {
        ConfigurableBool& command;
        const char* event;
        bool flash;
    } sequences[] = {
        {cmd.Rect(), "RECT", true},
        {cmd.Mpf(), "MPF", true},
        {cmd.Induction(), "INDUCTION", true},
        {cmd.Dark(), "DARK", false},
    };
    for (const auto& sequence : sequences) {
        if (!sequence.command.get())
            continue;
        _flash_until = sequence.flash ? _Now() + FLASH_SECONDS : -1;
        _SendEvent(sequence.event, sequence.flash ? "flash" : "dark pulse");
        _Trigger(sequence.flash ? WHEN_FLASH : WHEN_DARK);
    }
    if (cmd.Break().get()) {
        _flash_until = -1;
        _SendEvent("BREAK", "stopped");
    }
    if (cmd.Reset().get())
        _SendEvent("RESET", "measurement reset");
    const struct {
        ConfigurableBool& command;
        bool& state;
        bool value;
        const char* event;
    } switches[] = {
        {cmd.Redmodon(), _red_modulation, true, "REDMODON"},
        {cmd.Redmodoff(), _red_modulation, false, "REDMODOFF"},
        {cmd.Testvecton(), _test_vector, true, "TESTVECTON"},
        {cmd.Testvectoff(), _test_vector, false, "TESTVECTOFF"},
    };
    for (const auto& s : switches) {
        if (s.command.get()) {
            s.state = s.value;
            _SendEvent(s.event, s.value ? "on" : "off");
        }
    }

    if (cmd.Rawcapture().get()) {
        ConfigCfgRawDataCapture& settings = _doc.Conf().Cfg().Rawdatacapture();
        if (_capture && !_capture->Done()) {
            _SendEvent("RAWCAPTURE", "failed: a capture is running");
        } else if (settings.Size().get() <= 0) {
            _SendEvent("RAWCAPTURE", "failed: no size");
        } else {
            _capture.reset();
            _capture_size = settings.Size().get();
            _capture_when = settings.When().get();
            _SendEvent("RAWCAPTURE", "waiting for " + settings.When().get_string());
            _Trigger(WHEN_NOW);
        }
    }
}

std::string SimHalden::ServeText(const std::string& text)
{
    const std::string line = text.substr(0, text.find_last_not_of(" \t\r") + 1);
    if (line.empty())
        return "";
    if (line == "clr") {
        _console_lines = 0;
        return "FPGA clr\n";
    }
    if (QString::fromStdString(line).compare("out", Qt::CaseInsensitive) == 0)
        return "FPGA out " + std::to_string(_console_lines) + "\n";
    ++_console_lines;
    return "FPGA ok " + line + "\n";
}

void SimHalden::_Trigger(int when)
{
    if (_capture_when != when)
        return;
    _capture = std::make_unique<SimRawCapture>(_capture_size);
    _capture_when = -1;
}

void SimHalden::_Stream()
{
    if (!_capture || _capture->Done() || !_doc.Conf().Output().Datarawcapture().get())
        return;
    _Send(_capture->Lines(RAW_BYTES_PER_STEP));
}

std::string SimHalden::_Headers()
{
    ConfigOutputHalden& output = _doc.Conf().Output();
    std::string headers = HEADERS;
    if (output.Status().get())
        headers += STATUS_HEADERS;
    if (output.Datatest().get())
        headers += TEST_HEADER;
    return headers;
}

double SimHalden::_DC()
{
    const bool flashing = _Now() < _flash_until;
    return 412.0 + (flashing ? 9000.0 : 1800.0) + _plant.Noise(5.0) - _doc.Conf().Cal().DC0().get();
}

double SimHalden::_Pulse()
{
    const bool flashing = _Now() < _flash_until;
    const double fluorescence = _red_modulation ? (flashing ? 2400.0 : 1100.0) : 0.0;
    return 37.0 + fluorescence + _plant.Noise(3.0) - _doc.Conf().Cal().Pc0().get();
}

void SimHalden::_SendData(double time)
{
    const double pulse = _Pulse();
    DataLine line("DATA");
    _AddClockSeconds(line, time);
    line.AddInteger(std::llround(_DC()))
        .AddInteger(std::llround(pulse))
        .AddFixed(pulse / 2500.0, 4)
        .AddFixed(_Now() < _flash_until ? _doc.Conf().Cfg().Rectflash().Q_red_setpoint().get() : 0.0, 1);
    _Send(line.Checked());
    _Trigger(WHEN_MEASURE);
}

void SimHalden::_SendStatus(double time)
{
    ConfigOutputHalden& output = _doc.Conf().Output();
    if (output.Status().get()) {
        DataLine line("DATASTAT");
        _AddClockSeconds(line, time);
        line.AddInteger(_DiagWord({_Now() < _flash_until, _capture && !_capture->Done(), !_red_modulation,
                                   _test_vector}))
            .AddFixed(_plant.AirTemperature() + 8.0, 2)
            .AddInteger(_doc.Conf().Cfg().Fan_duty().get());
        _Send(line.Checked());
    }
    if (output.Datatest().get())
        _SendTest(time);
    if (output.Dataclock().get())
        _Send(DataLine("DATACLOCK").Add(_ClockText(time)).Plain());
}

void SimHalden::_SendTest(double time)
{
    DataLine line("DATATEST");
    _AddClockSeconds(line, time);
    line.AddInteger(++_test_count).AddInteger(std::llround(_DC())).AddInteger(std::llround(_Pulse()));
    _Send(line.Checked());
}

void SimHalden::_Restart()
{
    _capture.reset();
    _capture_when = -1;
    _flash_until = -1;
    _red_modulation = true;
    _test_vector = false;
}
