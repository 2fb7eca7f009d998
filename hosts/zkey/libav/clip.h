// A clip or picture opened by FFmpeg's libraries: decoded pictures in order, sound on the side.
#pragma once

#include <deque>

#include "hosts/zkey/libav/audio_track.h"
#include "hosts/zkey/libav/libav.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/yuv_planes.h"

namespace zkey {

class Clip {
public:
    /// `hint` ends the line that tells of a file which is none of FFmpeg's.
    Clip(const std::string &path, bool audio, const char *hint = "");
    ~Clip();
    Clip(const Clip &) = delete;
    Clip &operator=(const Clip &) = delete;

    const SourceInfo &Info() const { return m_info; }
    /// The next picture, or null at the end. Good until the next call; the caller may crop it.
    AVFrame *Next();
    /// The picture of this number, counted from 0, comes next; where that costs too much, one between it and the place from
    /// which pictures can be decoded. The times of pictures after a jump back are not
    /// to be used. False when the clip ends before.
    bool JumpTo(int64_t picture);
    /// When the picture that `Next` gave is shown, in units of the time base; always later than the one before.
    int64_t Time() const { return m_time; }
    /// When it has been shown for as long as the pictures of such a clip are.
    int64_t PictureEnd() const;
    /// The plain samples that begin before the present picture ends. They leave the audio track, which gets them back from
    /// the writer.
    void TakeSound(Sound &sound);
    /// How many pictures were too damaged to be decoded.
    int64_t Lost() const { return m_lost; }

private:
    void Describe(bool audio);
    bool ReadPacket();
    bool FeedDecoder();
    void KeepSound();
    void StampTime();

    std::string m_path;
    AVFormatContext *m_format = nullptr;
    AVStream *m_stream = nullptr;
    int m_sound = -1;
    Libav<AVCodecContext> m_decoder;
    Libav<AVFrame> m_frame;
    Libav<AVPacket> m_packet;
    SourceInfo m_info;
    std::deque<Libav<AVPacket>> m_waiting;    ///< of the pictures, read ahead of the decoder
    int64_t m_waitingBytes = 0;
    bool m_steady = true;    ///< every picture lasts equally long
    bool m_draining = false;
    int64_t m_start = AV_NOPTS_VALUE;    ///< time stamp of the first picture
    int64_t m_stamp = AV_NOPTS_VALUE;    ///< time stamp of the last picture
    bool m_found = false;                ///< the picture of the last jump waits in m_frame
    int64_t m_time = -1;
    int64_t m_lost = 0;
};

/// Matrix and range of a picture.
YuvMeaning MeaningOf(const AVFrame &frame);
/// A conversion to 4 bytes a pixel (blue, green, red, and alpha if `to` has it) at another size, with the matrix and range
/// of the picture. `cached` is taken and replaced.
void ConvertPicture(const AVFrame &frame, AVPixelFormat to, int width, int height, uint8_t *dst, int step,
                    Libav<SwsContext> &cached);
/// `yuvj...` formats are their plain forms, with the range in the frame.
AVPixelFormat PlainFormat(int format);

}    // namespace zkey
