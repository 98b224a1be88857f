// Pictures of cells as PNG.
#include "quell/report/png.h"

#include <openssl/evp.h>
#include <png.h>

#include <new>

namespace quell {

std::string PngDataUrl(const std::vector<Rgba>& cells, size_t width, size_t height)
{
    static_assert(sizeof(Rgba) == 4);
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    std::vector<unsigned char> png(PNG_IMAGE_PNG_SIZE_MAX(image));
    png_alloc_size_t size = png.size();
    if (png_image_write_to_memory(&image, png.data(), &size, 0, cells.data(), 0, nullptr) == 0)
        throw std::bad_alloc();
    std::string base64(4 * ((size + 2) / 3) + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(base64.data()), png.data(),
                                       static_cast<int>(size));
    base64.resize(static_cast<size_t>(length));
    return "data:image/png;base64," + base64;
}

}  // namespace quell
