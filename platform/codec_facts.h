// What an image file says about itself, read without a codec and before one allocates anything.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/codec.h"

namespace zck {

/// Numbers are 0 where the file does not tell them in the usual place.
struct CodecFacts {
    CodecKind kind;
    int64_t width = 0;
    int64_t height = 0;
    int64_t pictures = 0;    ///< counted up to `kPicturesCounted`
};
constexpr int64_t kPicturesCounted = 65536;

/// By the file's first bytes; nothing for a file of another kind.
std::optional<CodecFacts> CodecFactsOf(std::string_view file) noexcept;

/// Asks the sink about the size and the count that a file states.
HRESULT CodecFactsAsk(const CodecFacts &facts, CodecSink &sink);

}    // namespace zck
