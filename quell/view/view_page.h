// A component file as a page to look at.
#ifndef QUELL_VIEW_VIEW_PAGE_H
#define QUELL_VIEW_VIEW_PAGE_H

#include <string>

#include "IbisParser/ibis.h"
#include "quell/check/report.h"

namespace quell {

struct ViewRequest {
    std::string file;   // as the user named it
    std::string model;  // the only one to be shown; empty: all
    std::string note;   // one line for the top of the page; may be empty
};

// The page of a document that was read and checked. Beside one another stand the models with their
// findings; of many, each is folded away. Throws InputError when there is no such model.
std::string ViewPage(IbisRoot* root, const FileReport& report, const ViewRequest& request);

}  // namespace quell

#endif
