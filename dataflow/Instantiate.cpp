// Every instantiation of the templates of this folder, so that the library exports them too.
#include "dataflow/Add.h"
#include "dataflow/CircularBuffer.h"
#include "dataflow/CircularBufferBus.h"
#include "dataflow/ConstUnTimed.h"
#include "dataflow/Fork.h"
#include "dataflow/Gain.h"
#include "dataflow/Matrix.h"
#include "dataflow/VarDelay.h"

template class TalvernQuell::CircularBuffer<double>;
template class TalvernQuell::CircularBuffer<int>;
template class TalvernQuell::CircularBufferBusT<TalvernQuell::CircularBuffer<double>>;
template class TalvernQuell::Matrix<double>;
template class TalvernQuell::Matrix<std::complex<double>>;
template class TalvernQuell::Gain<double>;
template class TalvernQuell::Add<double>;
template class TalvernQuell::Fork<TalvernQuell::CircularBuffer<double>>;
template class TalvernQuell::VarDelay<TalvernQuell::CircularBuffer<double>>;
template class TalvernQuell::ConstUnTimedBase<double, TalvernQuell::CircularBuffer<double>>;
template class TalvernQuell::ConstUnTimed<double>;
