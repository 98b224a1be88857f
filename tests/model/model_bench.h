// A transmitter with storage at its ports, as AMI_Init gives it.
#ifndef TESTS_MODEL_MODEL_BENCH_H
#define TESTS_MODEL_MODEL_BENCH_H

#include "model/Quell_PCIe_Gen2_Tx.h"

struct ModelBench {
    Quell_PCIe_Gen2_Tx model;
    double input = 0.0;
    double output = 0.0;

    // The unit interval is 200 ps.
    ModelBench(double deEmphasisRatio, int samplesPerBit)
    {
        model.m_Input.Attach(&input, 1);
        model.m_Output.Attach(&output, 1);
        model.m_DeEmphasis = deEmphasisRatio;
        model.m_SamplesPerBit = samplesPerBit;
    }

    bool Prepare() { return model.Setup() && model.Initialize(); }
};

#endif
