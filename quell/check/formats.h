// The formats by name: a new one is a class and a row.
#ifndef QUELL_CHECK_FORMATS_H
#define QUELL_CHECK_FORMATS_H

#include <memory>
#include <utility>

#include "quell/check/classic_format.h"
#include "quell/check/json_format.h"
#include "quell/check/text_format.h"

namespace quell {

using MakeFormat = std::unique_ptr<CheckFormat> (*)(const FormatOptions& options);

template <typename Format>
std::unique_ptr<CheckFormat> Make(const FormatOptions& options)
{
    return std::make_unique<Format>(options);
}

inline constexpr std::pair<const char*, MakeFormat> Formats[] = {
    {"text", Make<TextFormat>},
    {"classic", Make<ClassicFormat>},
    {"json", Make<JsonFormat>},
};

}  // namespace quell

#endif
