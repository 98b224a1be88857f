#include "dataflow/DFErrorHandler.h"

#include <iostream>

namespace TalvernQuell {

static void Post(const char* message)
{
    std::cerr << message << std::endl;
}

void DFErrorHandler::PostError(DFModel* /*block*/, const char* message)
{
    Post(message);
}

void DFErrorHandler::PostWarning(DFModel* /*block*/, const char* message)
{
    Post(message);
}

void DFErrorHandler::PostInfo(DFModel* /*block*/, const char* message)
{
    Post(message);
}

void DFErrorHandler::PostLog(DFModel* /*block*/, const char* message)
{
    Post(message);
}

void DFErrorHandler::PostProgress(DFModel* /*block*/, const char* message)
{
    Post(message);
}

void DFErrorHandler::ClearProgress(DFModel* /*block*/)
{
}

bool DFErrorHandler::StopRequested()
{
    return false;
}

}  // namespace TalvernQuell
