#pragma once
// The simulated Halden fluorometer.

#include <memory>
#include <string>
#include <vector>

#include "libskarn/dochalden.h"
#include "sim/raw_capture.h"
#include "sim/sim_instrument.h"

/// A Halden. It sends DATA, its time in the first field, at its rate (2 per second unless told
/// otherwise), and once a second DATASTAT, DATATEST and DATACLOCK as `output` says. The flash
/// commands fire flashes that the fluorescence shows; `zero_dc0` and `zero_pc0` set their zero
/// in `cal` and append a record, typed "DC0 Zero" or "Pc0 Zero", to the history. `rawcapture`
/// captures `rawdatacapture`/`size` bytes, starting as `when` says: at once, at the next data
/// record, flash or dark pulse; the capture goes out as DATAFLRAW lines while `datarawcapture`
/// is set, RAW_BYTES_PER_STEP bytes at each step of time.
///
/// Its I/O logic has a text console on the same socket: every other line is written to the logic
/// and answered "FPGA ok " and the line; "out" (in any case) answers "FPGA out " and the number of
/// lines written since the last "clr", which answers "FPGA clr" and starts the count again.
/// Empty lines get no answer. Answers begin with no record name, so a link passes them by.
class SimHalden : public SimInstrument {
public:
    /// Bytes of a raw capture compressed and sent at each step of time.
    static constexpr int64_t RAW_BYTES_PER_STEP = 262144;

    explicit SimHalden(const std::string& name);

    int DefaultPort() const override { return 4430; }
    std::string ServeText(const std::string& line) override;

private:
    Configurable& _Doc() override { return _doc; }
    void _Apply(std::istream& in, std::ostream& out) override;
    std::vector<ConfigurableComposite*> _Commands() override { return {&_doc.Conf().Cmd()}; }
    ConfigModel* _Model() override { return &_doc.Conf(); }
    ConfigCfgClock* _Clock() override { return &_doc.Conf().Cfg().Clock(); }
    ConfigCfgNetwork* _Network() override { return &_doc.Conf().Cfg().Network(); }
    ConfigurableComposite* _Factory() override { return nullptr; }
    ConfigFactoryCmd* _FactoryCmd() override { return nullptr; }
    ConfigurableBool* _RebootCmd() override { return &_doc.Conf().Cmd().Reboot(); }
    std::string _Headers() override;
    void _SendData(double time) override;
    void _SendStatus(double time) override;
    void _Stream() override;
    void _Restart() override;

    void _SendTest(double time);
    /// Starts the capture waiting for `when`, if it waits for it.
    void _Trigger(int when);
    /// Counts that the detector reads now: the steady part and the modulated part.
    double _DC();
    double _Pulse();

    DocHalden _doc;
    std::unique_ptr<SimRawCapture> _capture;
    int _capture_when = -1;  ///< the `when` a requested capture waits for; -1 for none
    int64_t _capture_size = 0;
    double _flash_until = -1;
    bool _red_modulation = true;
    bool _test_vector = false;
    int64_t _test_count = 0;
    int64_t _console_lines = 0;
};
