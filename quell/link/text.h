// The result of a link in words, and its responses as tables.
#ifndef QUELL_LINK_TEXT_H
#define QUELL_LINK_TEXT_H

#include <string>

#include "quell/base/files.h"
#include "quell/link/link.h"

namespace quell {

// Channels, models and what they said, figures of every point, the eye.
std::string LinkText(const LinkResult& result);

// What the models printed, every line indented; empty where none did.
std::string PrintedText(const LinkResult& result);

enum class ResponseTable { Impulse, Pulse };

// One response of every column at every point over time, as CSV, in pieces.
void WriteResponses(const LinkResult& result, ResponseTable response, const TextSink& out);

}  // namespace quell

#endif
