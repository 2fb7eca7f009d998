// The build without FFmpeg's libraries: raw frames and YUV4MPEG2 only.
#include "hosts/zkey/failure.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/sound_file.h"

namespace zkey {
namespace {

constexpr const char *kRest =
    ": this build of zkey has no FFmpeg libraries; it reads raw frames (--raw) and YUV4MPEG2 (.y4m or -)";

}    // namespace

struct AudioTrack {};

std::unique_ptr<MediaReader> OpenLibavReader(const std::string &path, bool) { Fail("cannot read " + path + kRest); }

std::unique_ptr<MediaWriter> OpenLibavWriter(const Delivery &delivery) {
    Fail("cannot write " + delivery.path + kRest + " and writes raw frames (.raw or -) and YUV4MPEG2 (.y4m)");
}

std::unique_ptr<Background> OpenFileBackground(const std::string &path, int, int, Keyer &) {
    Fail("--over " + path +
         ": neither a colour nor \"checker\", and this build of zkey has no FFmpeg libraries to read a file");
}

Sound DecodeSound(const std::string &path) {
    Fail("cannot read the sound of " + path + ": this build of zkey has no FFmpeg libraries; it reads WAV files");
}

std::string LibavText() { return "without FFmpeg's libraries: raw frames and YUV4MPEG2 only"; }

}    // namespace zkey
