#pragma once
// The simulated Morvik, the methane analyser's base unit; a Sarnel is the same unit.

#include <string>
#include <vector>

#include "libskarn/docmorvik.h"
#include "sim/sim_instrument.h"

/// A Morvik. Its document has no output section: it always sends DATA at its rate, relaying the
/// head's methane values, and once a second DATASTAT and DATACLOCK.
class SimMorvik : public SimInstrument {
public:
    explicit SimMorvik(const std::string& name);

    int DefaultPort() const override { return 4420; }

private:
    Configurable& _Doc() override { return _doc; }
    void _Apply(std::istream& in, std::ostream& out) override { _doc.configure(in, out); }
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

    /// The bits of the DIAG word, in the order of DATADIAGH.
    int64_t _Diagnostics();

    DocMorvik _doc;
    double _supply = 12.0;  // V, as last measured
};
