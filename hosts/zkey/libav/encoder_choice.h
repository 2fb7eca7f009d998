// Which encoder writes which kind of file.
#pragma once

#include "hosts/zkey/composite.h"
#include "hosts/zkey/libav/libav.h"

namespace zkey {

struct EncoderChoice {
    const AVCodec *codec = nullptr;
    AVPixelFormat pixels = AV_PIX_FMT_NONE;
    std::string options;    ///< name=value pairs, separated by colons
};

/// The encoder for a container, for pictures with alpha or without. `codec` names another one than the usual. Ends the
/// program with a usage line when the container or the encoder cannot hold alpha.
EncoderChoice ChooseEncoder(const AVOutputFormat &container, const std::string &path, const std::string &codec, Finish finish,
                            int width, int height);

}    // namespace zkey
