// The identity record of the generator that produced the model.
#ifndef MODEL_VERSION_H
#define MODEL_VERSION_H

namespace TalvernQuellCodeGen {

// Prints the six identity lines on standard output.
void version();

}  // namespace TalvernQuellCodeGen

#endif
