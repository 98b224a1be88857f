// The end of a model selector that the file leaves open.
#ifndef IBISPARSER_READ_MODEL_MSEL_H
#define IBISPARSER_READ_MODEL_MSEL_H

void MSEL_Close();

#endif
