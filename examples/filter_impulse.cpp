// Sends a unit impulse through the transmitter model as a channel simulator would.
// Build: c++ -I include/quell filter_impulse.cpp -lQuell_PCIe_Gen2_Tx
#include <cstdio>
#include <vector>

#include "model/AMI.h"

int main()
{
    const double bit_time = 200e-12;
    const double sample_interval = bit_time / 16;
    std::vector<double> impulse(64, 0.0);
    impulse[0] = 1.0 / sample_interval;  // volts per second: unity gain at zero frequency

    char parameters[] = "(Quell_PCIe_Gen2_Tx (de_emphasis 3.5))";
    char* parameters_out = nullptr;
    char* message = nullptr;
    void* handle = nullptr;
    const long result =
        AMI_Init(impulse.data(), static_cast<long>(impulse.size()), 0, sample_interval, bit_time,
                 parameters, &parameters_out, &handle, &message);
    if (message != nullptr) std::printf("%s\n", message);
    for (const double sample : impulse)
        std::printf("%.6e\n", sample);
    AMI_Close(handle);
    return result == 1 ? 0 : 1;
}
