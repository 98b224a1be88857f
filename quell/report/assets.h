// Files built into the command.
#ifndef QUELL_REPORT_ASSETS_H
#define QUELL_REPORT_ASSETS_H

#include <string_view>

namespace quell {

std::string_view PictureStyle();   // CSS of the pictures, alone and in pages
std::string_view PageStyle();      // CSS of pages
std::string_view PageScript();     // turns the plots of a page into ones that can zoom
std::string_view DygraphScript();  // the dygraphs library
std::string_view DygraphStyle();
std::string_view DygraphCopyright();  // its licence, to be kept with it
std::string_view Licences();          // of everything that is built into the command and its pages

}  // namespace quell

#endif
