// channels.cpp: prints a table of measuring channels. Each has the unit of its sensor and a unit for
// display. The units are texts, as in a configuration file.
#include <cstdio>
#include <string>
#include <vector>

#include <mensor/mensor.h>
#include <mensor_checked/Reading.h>

using namespace mensor;

struct Channel {
    const char* Name;
    const char* SensorUnit;
    const char* ShownUnit;
    double Reading;  // in SensorUnit
};

int main() {
    const std::vector<Channel> channels{
        {"inlet pressure", "Pa", "mbar", 101325},
        {"outlet temperature", "K", "°C", 294.65},
        {"flow", "m³/s", "L/min", 0.0005},
        {"energy", "J", "kW·h", 5.4e6},
    };
    for (const Channel& channel : channels) {
        const CUnitPtr sensor = checked::readUnit(channel.SensorUnit);
        const CUnitPtr shown = checked::readUnit(channel.ShownUnit);
        // Look the converter up once; keep it for all readings of the channel.
        const CConverterPtr toShown = sensor->getConverterTo(shown);
        std::printf("%-18s %10.2f %s\n", channel.Name, toShown->convert(channel.Reading),
                    shown->toStdString().c_str());
    }
}
