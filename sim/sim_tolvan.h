#pragma once
// The simulated Tolvan: an open-path methane analyser with a tunable laser.

#include <string>
#include <vector>

#include "libskarn/doctolvan.h"
#include "sim/sim_instrument.h"

/// A Tolvan. It sends what `output` selects at `output`/`rate`: DATA, with the four waveforms
/// when `waveforms` is set, and once a second DATASTAT, DATACLOCK and DATACLOCKSYNC as
/// `status`, `dataclock` and `dataclocksync` say. The laser follows the cooler's set point with
/// a lag, and its waveforms are windows of SimSpectrum around the laser's temperature, DATAR and
/// DATAS with a little detector noise. Zero and span act on the calibration section and its
/// history; `calcommit` keeps a copy that `calrollback` and a restart go back to.
class SimTolvan : public SimInstrument, private DocTolvanListener {
public:
    /// Standard deviation of the detectors' noise on DATAR and DATAS, in absorption: a few parts
    /// in ten thousand, well under the shallowest line a scan must find.
    static constexpr double WAVEFORM_NOISE = 0.0004;

    explicit SimTolvan(const std::string& name);

    int DefaultPort() const override { return 4410; }
    int Rate() override;
    /// One of the rates of `output`/`rate`: 0, 1, 2, 5, 10, 20 or 40.
    bool SetRate(int hz) override;

private:
    Configurable& _Doc() override { return _doc; }
    void _Apply(std::istream& in, std::ostream& out) override;
    std::vector<ConfigurableComposite*> _Commands() override;
    ConfigModel* _Model() override { return &_doc.Conf(); }
    ConfigCfgClock* _Clock() override { return &_doc.Conf().Cfg().Clock(); }
    ConfigCfgNetwork* _Network() override { return &_doc.Conf().Cfg().Network(); }
    ConfigurableComposite* _Factory() override { return &_doc.Conf().Factory(); }
    ConfigFactoryCmd* _FactoryCmd() override { return &_doc.Conf().Factory().Cmd(); }
    ConfigurableBool* _RebootCmd() override { return &_doc.Conf().Cmd().Reboot(); }
    std::string _Headers() override;
    void _SendData(double time) override;
    void _SendStatus(double time) override;
    void _Restart() override;

    /// Points the laser and its block at the set points of `linelock`.
    void _Steer();
    void _SendWaveforms();
    void _SendTest();
    /// The bits of the DIAG word, in the order of DATADIAGH.
    int64_t _Diagnostics(double air_temperature, double signal_strength);
    /// Whether a heater (or the mirror) runs: as its control says, or, on "auto", as `automatic`.
    static bool _HeaterOn(const ConfigControl& control, bool automatic);

    // What the document tells after each message.
    void OnTempRange(int index) override;
    void OnRate(int hz) override;
    void OnCH4Zero() override;
    void OnCH4Span(float concentration) override;
    void OnCalCommit() override;
    void OnCalRollback() override;
    void OnCalAbort() override;
    void OnCalChanged() override { _cal_uncommitted = true; }
    void OnPoll() override { _SendData(_Now()); }
    void OnPollTest() override { _SendTest(); }
    void OnLineLock() override;
    void OnLogUSBStart() override;
    void OnLogUSBStop() override;
    // Heaters, mirror, laser and auxiliaries are read from the document at every record.
    void OnTopHeater(int64_t, int, long, long, float) override {}
    void OnBottomHeater(int64_t, int, int64_t, long, long) override {}
    void OnSpinMirror(int, int64_t, long, long, int64_t, long) override {}
    void OnLineLockChanged(int, int64_t, int, int64_t, float, float) override {}
    void OnAux(unsigned, int, float, float, float, float) override {}
    // Clock, network, factory commands and reboot are served by SimInstrument for every model.
    void OnSetTime(std::time_t) override {}
    void OnTimeZone(const std::string&) override {}
    void OnPTP(int) override {}
    void OnNetwork(const std::string&, bool, const SocketAddress&, const SocketAddress&, const SocketAddress&) override {}
    void OnFactoryChanged() override {}
    void OnFactoryCommit() override {}
    void OnFactoryRollback() override {}
    void OnReboot() override {}
    void OnConfigChanged() override;

    DocTolvan _doc;
    /// The calibration as `calcommit` last kept it.
    ConfigCal _committed_cal;
    bool _cal_uncommitted = false;
    bool _logging_usb = false;
    int64_t _test_count = 0;
};
