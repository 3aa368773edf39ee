#include "sim/sim_ostrel.h"

#include <algorithm>

SimOstrel::SimOstrel() : SimInstrument(1)
{
    _PowerUp("");
}

std::string SimOstrel::_Headers()
{
    return "DATAU\ts\t-\t-\t-\n"
           "DATAH\tTIME\tFLOW\tFLOWSET\tCHK\n";
}

void SimOstrel::_SendData(double time)
{
    const double set = _doc.Conf().Flow().get();
    DataLine line("DATA");
    _AddClockSeconds(line, time);
    line.AddFixed(std::clamp(set + _plant.Noise(0.002), 0.0, 1.0), 4).AddFixed(set, 4);
    _Send(line.Checked());
}
