// Pictures of cells as PNG.
#ifndef QUELL_REPORT_PNG_H
#define QUELL_REPORT_PNG_H

#include <cstdint>
#include <string>
#include <vector>

namespace quell {

// A cell is a colour and how much it covers of what is behind it.
struct Rgba {
    uint8_t red = 0, green = 0, blue = 0, alpha = 0;
};

// A "data:image/png;base64," address with the cells, rows from the top.
std::string PngDataUrl(const std::vector<Rgba>& cells, size_t width, size_t height);

}  // namespace quell

#endif
