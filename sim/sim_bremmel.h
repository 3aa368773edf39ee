#pragma once
// The simulated Bremmel, the data logger of a sonic anemometer, a GPS and a methane head.

#include <string>
#include <vector>

#include "libskarn/docbremmel.h"
#include "sim/sim_instrument.h"

/// A Bremmel. At its rate (10 per second unless told otherwise) it sends DATA, with seconds and
/// nanoseconds in its third and fourth fields, and in the same burst, with the same time, the
/// sonic's and the head's own records DATASONIC and DATACH4, DATAGPS, and DATASTAT as `output`
/// says; DATACLOCK once a second.
/// The USB commands are told by events and show in the DIAG word.
class SimBremmel : public SimInstrument {
public:
    explicit SimBremmel(const std::string& name);

    int DefaultPort() const override { return 50111; }

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
    void _Restart() override { _logging_usb = false; }

    int64_t _Diagnostics() const;

    DocBremmel _doc;
    bool _logging_usb = false;
};
