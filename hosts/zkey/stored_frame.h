// A frame in a file, in the stream form of the library. The pixels stay in the memory of the program that stored it.
#pragma once

#include <cstdint>
#include <string>

#include "hosts/zkey/ref.h"
#include "zchromakey/frames.h"

namespace zkey {

/// Writes the frame with all that it carries. Ends the program with a line when that fails, and leaves no file then.
void StoreFrame(IZFrame *frame, const std::string &path);

struct StoredFrame {
    Ref<IZFrame> frame;
    bool pixelsGone = false;    ///< the frame has everything but the pixels, which went with the program that stored it
};

/// Ends the program with a line that names the file when there is no stored frame in it.
StoredFrame LoadFrame(const std::string &path);

/// What a stored frame holds, a line for each thing.
std::string DescribeStored(const StoredFrame &stored);

}    // namespace zkey
