#pragma once
// The document of the Bremmel data logger: a serial port for a sonic instrument, a GPS port and
// USB storage. <arvex><bremmel>...</bremmel></arvex>.

#include <map>
#include <string>

#include "libskarn/configcommon.h"
#include "libskarn/document.h"

/// Which data records the logger sends on the link, tag `output`.
class ConfigOutputBremmel : public ConfigurableComposite {
public:
    ConfigOutputBremmel();

    ConfigurableBool& Status() { return _status; }
    ConfigurableBool& Dataclock() { return _dataclock; }

private:
    ConfigurableBool _status{"status", false};
    ConfigurableBool _dataclock{"dataclock", false};
};

/// The GPS receiver's protocol, tag `gpstype`: "Hemisphere" or "Garmin".
class ConfigCfgGPSType : public ConfigurableMultipleChoice {
public:
    ConfigCfgGPSType();
};

/// Settings, tag `cfg`: the head's name, the two serial ports, clock and network.
class ConfigCfgBremmel : public ConfigurableComposite {
public:
    ConfigCfgBremmel();

    ConfigurableString& Head() { return _head; }
    ConfigurableInteger& Sonicbaud() { return _sonicbaud; }
    ConfigurableInteger& Gpsbaud() { return _gpsbaud; }
    ConfigCfgGPSType& Gpstype() { return _gpstype; }
    ConfigCfgClock& Clock() { return _clock; }
    ConfigCfgNetwork& Network() { return _network; }

private:
    ConfigurableString _head{"head", ""};
    ConfigurableInteger _sonicbaud{"sonicbaud", 57600, 0, 115200};
    ConfigurableInteger _gpsbaud{"gpsbaud", 57600, 0, 115200};
    ConfigCfgGPSType _gpstype;
    ConfigCfgClock _clock;
    ConfigCfgNetwork _network;
};

/// One-shot commands, tag `cmd`: USB logging, safe removal, restart.
class ConfigCmdBremmel : public ConfigurableComposite {
public:
    ConfigCmdBremmel();

    ConfigurableBool& Logusbstart() { return _logusbstart; }
    ConfigurableBool& Logusbstop() { return _logusbstop; }
    ConfigurableBool& Ejectusb() { return _ejectusb; }
    ConfigurableBool& Reboot() { return _reboot; }

private:
    ConfigurableBool _logusbstart{"logusbstart", false};
    ConfigurableBool _logusbstop{"logusbstop", false};
    ConfigurableBool _ejectusb{"ejectusb", false};
    ConfigurableBool _reboot{"reboot", false};
};

/// Factory values, tag `factory`.
class ConfigFactoryBremmel : public ConfigurableComposite {
public:
    ConfigFactoryBremmel();

    ConfigurableString& Serialnumber() { return _serialnumber; }

private:
    ConfigurableString _serialnumber{"serialnumber", "BR-XXXX"};
};

/// The model node, tag "bremmel".
class ConfigBremmel : public ConfigModel {
public:
    ConfigBremmel();

    ConfigOutputBremmel& Output() { return _output; }
    ConfigCfgBremmel& Cfg() { return _cfg; }
    ConfigCmdBremmel& Cmd() { return _cmd; }
    ConfigFactoryBremmel& Factory() { return _factory; }

    /// Sets the commands back to false.
    void ResetCommands() { _cmd.set_to_default(); }
    /// Whether output, cfg or one of the reported texts has changed; the factory section never counts.
    bool IsConfigChanged() const;

    /// The generic dialog's labels. Most keys are shared with the head's map and name no node here.
    static const std::map<std::string, std::string>& Labels();

private:
    ConfigOutputBremmel _output;
    ConfigCfgBremmel _cfg;
    ConfigCmdBremmel _cmd;
    ConfigFactoryBremmel _factory;
};

/// The Bremmel document, root `arvex`.
class DocBremmel : public ListenedDocument<ConfigBremmel> {
};
