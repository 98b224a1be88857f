// Base class of every block and of the transmitter model.
#ifndef DATAFLOW_DFMODEL_H
#define DATAFLOW_DFMODEL_H

namespace TalvernQuell {

// The owner of a block constructs it, sets its parameters, connects its ports and then drives it:
// Setup, Initialize, Run once per firing, UpdateDynamicParameters after a change between firings,
// Finalize. Each returns true to go on; false means that the block has posted an error and that
// the owner must stop.
class DFModel {
public:
    virtual bool Setup() { return true; }
    virtual bool Initialize() { return true; }
    virtual bool Run() { return true; }
    virtual bool Finalize() { return true; }
    virtual bool UpdateDynamicParameters() { return true; }
    virtual ~DFModel() = default;
};

}  // namespace TalvernQuell

#endif
