#include "libskarn/docostrel.h"

ConfigOstrel::ConfigOstrel() : ConfigurableComposite("ost")
{
    add(_flow);
}
