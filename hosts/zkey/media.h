// Where pictures come from and where they go. Each kind of file or pipe is one reader or writer behind these interfaces;
// which kinds there are, beyond raw frames and YUV4MPEG2, is decided when the program is built.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/frame_format.h"
#include "hosts/zkey/frame_sound.h"
#include "hosts/zkey/options.h"

namespace zkey {

/// Sound that goes from the reader's file to the writer's, known to those two only. Compressed sound stays in it untouched;
/// plain samples travel in the frames.
struct AudioTrack;

struct SourceInfo {
    int32_t width = 0;
    int32_t height = 0;
    Rational rate{25, 1};
    Rational timeBase{1, 25};    ///< unit of the pictures' times, in seconds
    Rational pixelAspect{1, 1};
    int64_t frames = 0;                    ///< 0: unknown
    eZInterlace scan = eZI_Progressive;    ///< of the first picture, once it is read
    bool still = false;                    ///< one picture, not a clip
    /// How a player turns the pictures, as nine fixed-point numbers; empty when it does not. Pictures stay as they are stored.
    std::vector<int32_t> displayMatrix;
    std::shared_ptr<AudioTrack> audio;
};

/// The next picture: what it will be handed over as, and when it is shown.
struct Arrival {
    eZFCC fcc = eZFCC_Default;
    eZInterlace scan = eZI_Progressive;
    int64_t time = 0;
};

class MediaReader {
public:
    virtual ~MediaReader() = default;
    virtual const SourceInfo &Info() const = 0;
    /// Fetches the next picture. False at the end.
    virtual bool Next(Arrival &arrival) = 0;
    /// Goes on with this picture of the clip, counted from 0, or with one near it. False where there is no way to get there.
    virtual bool JumpTo(int64_t /*picture*/) { return false; }
    /// The plain samples that belong to the fetched picture, or nothing.
    virtual void TakeSound(Sound & /*sound*/) {}
    /// How many pictures were too damaged to be given so far.
    virtual int64_t Lost() const { return 0; }
    /// Writes the fetched picture into a frame of the announced format and at least the announced size.
    virtual void Store(uint8_t *pixels, const Z_VID_PROPS &props) = 0;
};

class MediaWriter {
public:
    virtual ~MediaWriter() = default;
    /// One finished picture, 4 bytes a pixel.
    virtual void Write(const ImageView &picture, int64_t time) = 0;
    /// Samples that came with the picture that is written next.
    virtual void PutSound(SoundBytes /*samples*/) {}
    /// Completes the file. Without it a destructed writer leaves what there is.
    virtual void Close() = 0;
    /// The file that is no good when writing fails: that of the whole output, or of one picture.
    virtual std::string Unfinished() const = 0;
};

class Keyer;

/// What stands behind the pictures, of the size of the result.
class Background {
public:
    virtual ~Background() = default;
    /// The picture at this time, which never goes back; good until the next call.
    virtual ImageView At(double seconds) = 0;
};

/// What the writer is asked for.
struct Delivery {
    std::string path;
    std::string format;    ///< empty: by the path
    std::string codec;     ///< empty: by the format
    Finish finish = Finish::Straight;
    bool quiet = false;
    SourceInfo source;
};

std::unique_ptr<MediaReader> OpenReader(const KeyCommand &command);
/// True when the input is files, so that a second reader may look into it.
bool CanBeReopened(const KeyCommand &command);
std::unique_ptr<MediaWriter> OpenWriter(const Delivery &delivery);
/// A file is fitted by the keyer's library.
std::unique_ptr<Background> OpenBackground(const std::string &what, int width, int height, Keyer &keyer);
/// How alpha is kept in such an output when the user does not say it.
Finish NaturalAlpha(const std::string &path, const std::string &format);
/// True when the output holds one picture only.
bool IsStill(const std::string &path, const std::string &format);

// The kinds that need nothing but this program.
std::unique_ptr<MediaReader> OpenRawReader(const std::string &path, const RawSpec &spec);
std::unique_ptr<MediaReader> OpenY4mReader(const std::string &path);
std::unique_ptr<MediaWriter> OpenRawWriter(const Delivery &delivery);
std::unique_ptr<MediaWriter> OpenY4mWriter(const Delivery &delivery);
std::unique_ptr<Background> OpenPlainBackground(uint32_t colour, int width, int height);
std::unique_ptr<Background> OpenCheckerBackground(int width, int height);

// The kinds that need FFmpeg's libraries. A build without them refuses with a line that says so.
std::unique_ptr<MediaReader> OpenLibavReader(const std::string &path, bool audio);
std::unique_ptr<MediaWriter> OpenLibavWriter(const Delivery &delivery);
std::unique_ptr<Background> OpenFileBackground(const std::string &path, int width, int height, Keyer &keyer);
/// "with FFmpeg's libraries (...)" or "without ...".
std::string LibavText();

}    // namespace zkey
