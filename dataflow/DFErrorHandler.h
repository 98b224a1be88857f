// Where blocks report: one line per message on the standard error stream.
#ifndef DATAFLOW_DFERRORHANDLER_H
#define DATAFLOW_DFERRORHANDLER_H

namespace TalvernQuell {

class DFModel;

// The severity is the caller's remark only: all five write the text as given, a line end, and
// flush. The block may be null.
class DFErrorHandler {
public:
    static void PostError(DFModel* block, const char* message);
    static void PostWarning(DFModel* block, const char* message);
    static void PostInfo(DFModel* block, const char* message);
    static void PostLog(DFModel* block, const char* message);
    static void PostProgress(DFModel* block, const char* message);
    static void ClearProgress(DFModel* block);
    // This host cannot ask for a stop: always false.
    static bool StopRequested();
};

}  // namespace TalvernQuell

#endif
