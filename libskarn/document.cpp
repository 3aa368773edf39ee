#include "libskarn/document.h"

void ConfigModel::_add_opening_nodes(const ConfigurableString& factory_serialnumber, bool with_fpga_and_dsp)
{
    _ack.set_enabled(false);
    _error.set_enabled(false);
    _serialnumber = std::make_unique<ConfigurableStringProxyReadOnly>("serialnumber", factory_serialnumber);
    add(_ack);
    add(_ver);
    if (with_fpga_and_dsp) {
        add(_fpga);
        add(_dsp);
    }
    add(_name);
    add(*_serialnumber);
    add(_ipaddress);
}
