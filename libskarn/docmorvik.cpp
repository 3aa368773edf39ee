#include "libskarn/docmorvik.h"

ConfigCfgMorvik::ConfigCfgMorvik() : ConfigurableComposite("cfg")
{
    add(_head);
    add(_clock);
    add(_network);
}

ConfigFactoryMorvik::ConfigFactoryMorvik() : ConfigurableComposite("factory")
{
    add(_serialnumber);
    add(_cmd);
}

ConfigCPLDMorvik::ConfigCPLDMorvik() : ConfigurableComposite("cpld")
{
    add(_ver);
}

ConfigMorvik::ConfigMorvik() : ConfigModel("morvik")
{
    _add_opening_nodes(_factory.Serialnumber());
    add(_cfg);
    add(_cmd);
    add(_factory);
    _add_closing_nodes();
}
