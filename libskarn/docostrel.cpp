#include "libskarn/docostrel.h"

ConfigCmdOstrel::ConfigCmdOstrel() : ConfigurableComposite("cmd")
{
    add(_reboot);
}

ConfigOstrel::ConfigOstrel() : ConfigurableComposite("ost")
{
    add(_flow);
}
