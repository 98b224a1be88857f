// Calls AMI_Init and AMI_Close of any maker's model in a process of its own, so that whatever the
// model does to its process is a result and not the end of the caller.
#ifndef QUELL_PROCESS_HOST_H
#define QUELL_PROCESS_HOST_H

#include <optional>
#include <string>
#include <vector>

#include "quell/process/shared_matrix.h"

namespace quell {

struct AmiCall {
    std::string model;          // shared library
    std::string parameters;     // the string for AMI_Init, as it is
    double sampleInterval = 0;  // s
    double bitTime = 0;         // s
    double timeout = 60;        // s, for loading and both calls together
};

enum class AmiOutcome {
    Returned,     // AMI_Init came back, whatever it returned
    NotLoadable,  // no shared library, or one without AMI_Init
    Crashed,      // a signal, an exception, or an end of the process
    TimedOut,
};

struct AmiResult {
    AmiOutcome outcome = AmiOutcome::Returned;
    std::string failure;                       // one line when the outcome is not Returned
    long returnCode = 0;                       // of AMI_Init
    std::optional<std::string> message;        // what msg was set to
    std::optional<std::string> parametersOut;  // what AMI_parameters_out was set to
    std::string printed;  // what the model wrote to its standard output and standard error
    std::vector<std::string> warnings;
};

// Gives the matrix to the model, V/s, the victim's column first; the model works in it. Blocks
// until the model's process has ended; processes that it left behind are killed with it. Messages
// and printed text are kept up to 1 MB each; a warning says when there was more. Throws
// CommandError only when the system gives no process or memory.
AmiResult RunAmiModel(const AmiCall& call, SharedMatrix& matrix);

}  // namespace quell

#endif
