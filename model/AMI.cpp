#include "model/AMI.h"

#include <cmath>
#include <memory>

#include "ami/ParamParser.h"
#include "dataflow/Numeric.h"
#include "model/drive_internal.h"

using TalvernQuell::AMI::ParamParser;

static const char DeEmphasisMissing[] =
    "The IBIS-AMI model, Quell_PCIe_Gen2_Tx, is unable to initialize the parameter de_emphasis "
    "from the AMI_Init arguments.  The model will use the default setting. ";

long AMI_Init(double* impulse_matrix, long row_size, long aggressors, double sample_interval,
              double bit_time, char* AMI_parameters_in, char** /*AMI_parameters_out*/,
              void** AMI_memory_handle, char** msg)
{
    auto* const handle = new AMIModelHandle;
    Quell_PCIe_Gen2_Tx& model = handle->model;

    const ParamParser parameters(AMI_parameters_in);
    if (!parameters.GetValue(model.m_DeEmphasis, "Quell_PCIe_Gen2_Tx.de_emphasis"))
        handle->message += DeEmphasisMissing;
    // The default is taken as decibels too.
    model.m_DeEmphasis = std::pow(10.0, model.m_DeEmphasis / 20.0);
    model.m_SamplesPerBit = TalvernQuell::TruncateToInt32(bit_time / sample_interval + 0.5);
    model.m_BitTime = bit_time;

    const auto input = std::make_unique<double[]>(1);
    const auto output = std::make_unique<double[]>(1);
    model.m_Input.Attach(input.get(), 1);
    model.m_Output.Attach(output.get(), 1);

    const long result =
        Drive::Columns(model, impulse_matrix, row_size, aggressors, handle->message);

    model.m_Input.Attach(nullptr, 0);
    model.m_Output.Attach(nullptr, 0);
    *AMI_memory_handle = handle;
    if (!handle->message.empty()) *msg = handle->message.data();
    return result;
}

long AMI_Close(void* AMI_memory_handle)
{
    delete static_cast<AMIModelHandle*>(AMI_memory_handle);
    return 1;
}
