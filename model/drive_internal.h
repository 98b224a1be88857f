// Drives a model over the columns of an impulse matrix.
#ifndef MODEL_DRIVE_INTERNAL_H
#define MODEL_DRIVE_INTERNAL_H

#include <string>

namespace Drive {

// Takes one column through a model sample by sample, in place. Stops at the first Run that fails:
// that sample and those after it keep their values.
template <typename Model>
bool FireColumn(Model& model, double* column, long count)
{
    for (long i = 0; i < count; ++i) {
        model.m_Input.Current() = column[i];
        if (!model.Run()) return false;
        column[i] = model.m_Output.Current();
    }
    return true;
}

template <typename Model>
bool ProcessColumn(Model& model, double* column, long count)
{
    if constexpr (requires { model.RunColumn(column, count); })
        return model.RunColumn(column, count);
    else
        return FireColumn(model, column, count);
}

// Takes every column through Setup, Initialize, Run and Finalize. What is set up is finalised, also
// after a failure. The first column that fails is the last one touched; a sentence for each failure
// is appended to the message. Returns 1, or 0 after a failure.
template <typename Model>
long Columns(Model& model, double* matrix, long rowSize, long aggressors, std::string& message)
{
    const auto check = [&message](bool done, const char* operation) {
        if (!done)
            message.append("Error occurred in Quell_PCIe_Gen2_Tx::")
                .append(operation)
                .append("(). ");
        return done;
    };
    double* column = matrix;
    for (long c = 0; c <= aggressors; ++c) {
        const bool filtered = check(model.Setup(), "Setup") &&
                              check(model.Initialize(), "Initialize") &&
                              check(ProcessColumn(model, column, rowSize), "Run");
        const bool finalized = check(model.Finalize(), "Finalize");
        if (!filtered || !finalized) return 0;
        if (rowSize > 0) column += rowSize;
    }
    return 1;
}

}  // namespace Drive

#endif
