#pragma once
// The document of the methane analyser's base unit, the Morvik, and of its variant the Sarnel:
// both answer to the model tag "morvik". Identity, a head name, clock, network, reboot and a
// serial number.

#include "libskarn/configcommon.h"
#include "libskarn/document.h"

/// Settings, tag `cfg`: the name of the connected head, clock and network.
class ConfigCfgMorvik : public ConfigurableComposite {
public:
    ConfigCfgMorvik();

    ConfigurableString& Head() { return _head; }
    ConfigCfgClock& Clock() { return _clock; }
    ConfigCfgNetwork& Network() { return _network; }

private:
    ConfigurableString _head{"head", ""};
    ConfigCfgClock _clock;
    ConfigCfgNetwork _network;
};

/// The factory commands are those of every factory section.
using ConfigFactoryCmdMorvik = ConfigFactoryCmd;

/// Factory values, tag `factory`.
class ConfigFactoryMorvik : public ConfigurableComposite {
public:
    ConfigFactoryMorvik();

    ConfigurableString& Serialnumber() { return _serialnumber; }
    ConfigFactoryCmdMorvik& Cmd() { return _cmd; }

private:
    ConfigurableString _serialnumber{"serialnumber", "ch4-base-XXXX"};
    ConfigFactoryCmdMorvik _cmd;
};

/// The programmable logic's version, tag `cpld`. A Morvik has none on the wire: the model keeps
/// the object but never adds it, so it stays at its default.
class ConfigCPLDMorvik : public ConfigurableComposite {
public:
    ConfigCPLDMorvik();

    ConfigurableString& Ver() { return _ver; }

private:
    ConfigurableString _ver{"ver", ""};
};

/// The model node, tag "morvik".
class ConfigMorvik : public ConfigModel {
public:
    ConfigMorvik();

    ConfigCfgMorvik& Cfg() { return _cfg; }
    ConfigCmdReboot& Cmd() { return _cmd; }
    ConfigFactoryMorvik& Factory() { return _factory; }
    /// Not part of the tree; see ConfigCPLDMorvik.
    ConfigCPLDMorvik& Cpld() { return _cpld; }

private:
    ConfigCfgMorvik _cfg;
    ConfigCmdReboot _cmd;
    ConfigFactoryMorvik _factory;
    ConfigCPLDMorvik _cpld;
};

/// The document of Morvik and Sarnel links. Only mirrored: it has no listeners.
class DocMorvik : public Document<ConfigMorvik> {
};
