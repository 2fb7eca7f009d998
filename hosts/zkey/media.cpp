#include "hosts/zkey/media.h"

#include "hosts/zkey/colours.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

bool IsRaw(const std::string &path, const std::string &format) {
    if (!format.empty()) return SameWord(format, "raw");
    const std::string ext = ExtensionOf(path);
    return ext == ".raw" || ext == ".bgra";
}

bool IsY4m(const std::string &path, const std::string &format) {
    if (!format.empty()) return SameWord(format, "y4m");
    return ExtensionOf(path) == ".y4m";
}

/// A size that is not the file's shows at once, before a clip of nonsense is keyed.
void RequireWholeFrames(const KeyCommand &command) {
    const int64_t size = IsFile(command.input) ? SizeOf(command.input) : 0;
    const RawSpec &spec = *command.raw;
    const int64_t frame = PipeFrameBytes(spec.fcc, spec.width, spec.height);
    if (size % frame == 0 || (command.frames > 0 && command.frames <= size / frame)) return;
    Fail("--raw: " + command.input + " has " + std::to_string(size) + " bytes, which are " + std::to_string(size / frame) +
         " frames of " + std::to_string(frame) + " bytes and " + std::to_string(size % frame) +
         " bytes over; check format and size" +
         (size < frame ? "" : ", or key the whole frames with --frames " + std::to_string(size / frame)));
}

}    // namespace

std::unique_ptr<MediaReader> OpenReader(const KeyCommand &command) {
    RequireFile(command.input);
    if (command.raw) {
        RequireWholeFrames(command);
        return OpenRawReader(command.input, *command.raw);
    }
    // A clip on standard input without a word about it is YUV4MPEG2; its first line tells whether that is true.
    if (command.input == "-" || IsY4m(command.input, "")) return OpenY4mReader(command.input);
    return OpenLibavReader(command.input, command.audio);
}

bool CanBeReopened(const KeyCommand &command) {
    return command.input != "-" && (IsFile(command.input) || command.input.find('%') != std::string::npos);
}

std::unique_ptr<MediaWriter> OpenWriter(const Delivery &delivery) {
    RequireWritable(delivery.path);
    if (delivery.path == "-" && delivery.format.empty()) return OpenRawWriter(delivery);
    if (IsRaw(delivery.path, delivery.format)) return OpenRawWriter(delivery);
    if (IsY4m(delivery.path, delivery.format)) return OpenY4mWriter(delivery);
    if (delivery.path == "-") FailUsage("standard output takes raw frames or -f y4m");
    return OpenLibavWriter(delivery);
}

std::unique_ptr<Background> OpenBackground(const std::string &what, int width, int height, Keyer &keyer) {
    if (SameWord(what, "checker")) return OpenCheckerBackground(width, height);
    if (const auto colour = ParseColour(what)) return OpenPlainBackground(*colour, width, height);
    return OpenFileBackground(what, width, height, keyer);
}

Finish NaturalAlpha(const std::string &path, const std::string &format) {
    const bool raw = (path == "-" && format.empty()) || IsRaw(path, format);
    return raw ? Finish::Premultiplied : Finish::Straight;
}

bool IsStill(const std::string &path, const std::string &format) {
    if (!format.empty() || path.find('%') != std::string::npos) return false;
    const std::string ext = ExtensionOf(path);
    for (const char *still : {".png", ".jpg", ".jpeg", ".bmp", ".tif", ".tiff", ".webp", ".tga", ".ppm", ".pgm"}) {
        if (ext == still) return true;
    }
    return false;
}

}    // namespace zkey
