/* The entry points of the IBIS-AMI interface. */
#ifndef MODEL_AMI_H
#define MODEL_AMI_H

#ifdef __cplusplus
#include <string>

#include "model/Quell_PCIe_Gen2_Tx.h"

/* What the memory handle points to. */
struct AMIModelHandle {
    Quell_PCIe_Gen2_Tx model;
    std::string message; /* what *msg points to, until AMI_Close */
};

extern "C" {
#endif

/* Filters every column of the impulse matrix in place: aggressors + 1 columns of row_size samples,
 * one after another, the victim first, sample_interval seconds apart. bit_time is the unit interval
 * in seconds. The parameter string holds the de-emphasis in dB, for example
 * "(Quell_PCIe_Gen2_Tx (de_emphasis 3.5))"; without it a default is used and *msg says so.
 *
 * Returns 1, or 0 when a column failed: the columns before it are filtered, those after it are not.
 * In both cases *AMI_memory_handle is set and wants AMI_Close. *msg is set only when there is a
 * message. AMI_parameters_out is never written. Throws std::bad_alloc where memory runs out. */
long AMI_Init(double* impulse_matrix, long row_size, long aggressors, double sample_interval,
              double bit_time, char* AMI_parameters_in, char** AMI_parameters_out,
              void** AMI_memory_handle, char** msg);

/* Releases a handle, which may be null. Always 1. */
long AMI_Close(void* AMI_memory_handle);

#ifdef __cplusplus
}
#endif

#endif
