// The operator's key object, worked out the slow way: fixed slots, whole copies of every state, one block after the other.
// Nothing here is shared with the library but the public records; frames are cloned and keyed by the library, whose clones and
// keyed pictures have models of their own.
#pragma once

#include <optional>
#include <vector>

#include "tests/conformance/convert_model.h"
#include "zchromakey/frame.h"
#include "zchromakey/holders.h"
#include "zchromakey/key_types.h"

namespace conformance {

// What a call or the object's settings say; empty is unsaid. Of the type only the three words are known: 0 RGB, 1 HLS, 2 YUV.
struct KeyWishes {
    std::optional<int32_t> type, maxKeys, blocks, threshold;
    std::optional<double> keyDiff;
    std::optional<bool> showBlocks, forcePoint;
};

// The visible pixels of a frame, 4 bytes each, top row first.
struct Shot {
    bool any = false;
    eZFCC fcc = eZFCC_Default;
    int32_t width = 0;
    int32_t rows = 0;
    Bytes pixels;
};
Shot ShotOf(IZFrame *frame);

struct KeyAnswer {
    HRESULT hr;
    Shot shot;
};

class KeyModel {
public:
    KeyWishes m_settings;                       // of detection
    std::optional<int32_t> m_settingMaxKeys;    // of picks

    HRESULT FrameSet(IZFrame *keying, IZFrame *background);
    Shot FrameGet();
    KeyAnswer Detect(const KeyWishes &wishes);
    KeyAnswer Point(bool exclude, int32_t x, int32_t y, const KeyWishes &wishes);
    KeyAnswer Rect() { return Render(); }
    KeyAnswer AdjustSet(int32_t which, double value);
    KeyAnswer Back();
    KeyAnswer Forward();
    KeyAnswer Reset();
    void RawSet(const CHROMA_KEY_RAW &raw, const CK_ADJUST *adjust);

    const CHROMA_KEY_RAW &Raw() const { return m_step.key; }
    CK_ADJUST &Adjust() { return m_step.adjust; }
    IZFrame *Background() const { return m_background.get(); }
    size_t HistorySize() const { return m_history.size(); }

    // The value that a selector means; null for those that mean none.
    static double *Field(CK_ADJUST &adjust, int32_t which);

private:
    struct Range {
        double centre[4] = {}, delta[4] = {}, weight = 0;
    };
    struct Set {
        Range ranges[16];
        int32_t max = 16;
        int32_t count = 0;
    };
    struct Step {
        CHROMA_KEY_RAW key = {};
        CK_ADJUST adjust;
        Set add, exclude;
        Step();
    };
    struct Image {
        Z_VID_PROPS props = {};
        Bytes bytes;    // as stored, |nHeight| rows of nRowBytes
        uint8_t *At(int32_t storedRow, int32_t x) {
            return bytes.data() + static_cast<int64_t>(storedRow) * props.nRowBytes + int64_t{x} * 4;
        }
        int32_t Rows() const { return props.nHeight < 0 ? -props.nHeight : props.nHeight; }
    };

    void Save();
    static HRESULT Read(IZFrame *frame, Image &image);
    HRESULT Work(int32_t type);
    KeyAnswer Render() const;
    KeyAnswer OverBackground(const Shot &shot, int32_t height) const;
    void Rebuild(int32_t type);
    bool BlockRange(int32_t bx, int32_t by, int32_t bw, int32_t bh, int32_t threshold, Range &range);
    bool InBand(const uint8_t *pixel) const;
    bool Scan(int32_t blocks, int32_t threshold, double diff, bool paint);

    static bool Contains(const Range &a, const Range &b);
    static double Size(const double *d, bool hls);
    static double Cost(Range &a, const Range &b, double *own, bool hls);
    static void Merge(Range &a, const Range &b);
    static int32_t Classify(Set &set, const Range &r, double diff, bool hls);
    static int32_t Add(Set &set, const Range &r, double diff, bool hls);
    static void Limit(Set &set, int64_t n);
    static void Load(Set &set, const CHROMA_KEY_RAW &key, bool exclude);
    static void Append(CHROMA_KEY_RAW &key, const Set &set, int32_t reverse);
    static void Remove(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust);
    static void Apply(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust);

    ZComPtr<IZFrame> m_keying, m_view, m_background;
    bool m_hasWork = false;
    int32_t m_workType = 0;
    Image m_work;
    Step m_step;
    std::vector<Step> m_history;
    int32_t m_position = -1;
};

}    // namespace conformance
