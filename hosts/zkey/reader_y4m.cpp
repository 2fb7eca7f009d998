#include <cstring>
#include <string_view>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/hand_over.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr std::size_t kLongestLine = 4096;
// What stands before each picture; words that may follow in this line are not written by anyone.
constexpr std::string_view kMark = "FRAME\n";

struct Layout {
    std::string_view name;
    int shiftX;
    int shiftY;
    bool leftSited;
    bool chroma;
};

constexpr Layout kLayouts[] = {{"420jpeg", 1, 1, false, true}, {"420mpeg2", 1, 1, true, true}, {"420paldv", 1, 1, true, true},
                               {"420", 1, 1, false, true},     {"422", 1, 0, true, true},      {"444", 0, 0, true, true},
                               {"mono", 0, 0, true, false}};

class Y4mReader : public MediaReader {
public:
    explicit Y4mReader(const std::string &path) : m_pipe(path) {
        std::string line;
        if (!m_pipe.Line(line, kLongestLine) || !line.starts_with("YUV4MPEG2")) {
            Fail(m_pipe.Name() + " is no YUV4MPEG2 clip" + (path == "-" ? "; raw frames need --raw FORMAT:WxH" : ""));
        }
        m_start = static_cast<int64_t>(line.size()) + 1;
        for (std::size_t at = line.find(' '); at != std::string::npos;) {
            const std::size_t next = line.find(' ', at + 1);
            Take(std::string_view(line).substr(at + 1, next == std::string::npos ? next : next - at - 1));
            at = next;
        }
        if (m_info.width < 1 || m_info.height < 1 || m_info.width > 32768 || m_info.height > 32768) {
            Fail(m_pipe.Name() + ": the size " + std::to_string(m_info.width) + "x" + std::to_string(m_info.height) +
                 " is out of range");
        }
        RequireFits(m_pipe.Name(), m_info.width, m_info.height);
        const YuvMeaning bySize = MeaningBySize(m_info.width, m_info.height);
        m_meaning = {bySize.kr, bySize.kb, m_meaning.fullRange};
        m_info.timeBase = {m_info.rate.den, m_info.rate.num};
        m_chromaWidth = (m_info.width + (1 << m_layout.shiftX) - 1) >> m_layout.shiftX;
        m_chromaHeight = (m_info.height + (1 << m_layout.shiftY) - 1) >> m_layout.shiftY;
        const std::size_t luma = static_cast<std::size_t>(m_info.width) * static_cast<std::size_t>(m_info.height);
        const std::size_t chroma = static_cast<std::size_t>(m_chromaWidth) * static_cast<std::size_t>(m_chromaHeight);
        m_fileBytes = luma + (m_layout.chroma ? 2 * chroma : 0);
        m_frame.assign(luma + 2 * chroma, 128);
        m_info.frames = m_pipe.Size() / static_cast<int64_t>(m_fileBytes + kMark.size());
    }

    const SourceInfo &Info() const override { return m_info; }

    bool Next(Arrival &arrival) override {
        std::string line;
        if (!m_pipe.Line(line, kLongestLine)) {
            if (!line.empty() && !Interrupted())
                Fail(m_pipe.Name() + ": the clip is damaged after frame " + std::to_string(m_next));
            return false;
        }
        if (!line.starts_with("FRAME")) Fail(m_pipe.Name() + ": the clip is damaged after frame " + std::to_string(m_next));
        if (m_pipe.Read(m_frame.data(), m_fileBytes) < m_fileBytes) {
            if (Interrupted()) return false;
            Fail(m_pipe.Name() + " ends in the middle of frame " + std::to_string(m_next + 1));
        }
        arrival = {HandOverFormat(Samples(), m_meaning, m_info.width, m_info.height), m_scan, m_next++};
        return true;
    }

    bool JumpTo(int64_t picture) override {
        m_next = picture;
        return m_pipe.Seek(m_start + picture * static_cast<int64_t>(kMark.size() + m_fileBytes));
    }

    void Store(uint8_t *pixels, const Z_VID_PROPS &props) override {
        HandOver(Samples(), m_meaning, m_info.width, m_info.height, pixels, props);
    }

private:
    YuvPlanes Samples() const {
        YuvPlanes p{};
        p.y = m_frame.data();
        p.cb = p.y + std::ptrdiff_t{m_info.width} * m_info.height;
        p.cr = p.cb + std::ptrdiff_t{m_chromaWidth} * m_chromaHeight;
        p.lumaRow = m_info.width;
        p.chromaRow = m_chromaWidth;
        p.shiftX = m_layout.shiftX;
        p.shiftY = m_layout.shiftY;
        p.leftSited = m_layout.leftSited;
        p.interlaced = IsInterlaced(m_scan);
        if (m_layout.shiftX == 1 && m_layout.shiftY == 1) p.arranged = eZFCC_I420;
        return p;
    }

    /// One word of the first line: a letter and its value.
    void Take(std::string_view word) {
        if (word.empty()) return;
        const std::string_view value = word.substr(1);
        switch (word[0]) {
            case 'W':
                ParseWhole(value, m_info.width);
                break;
            case 'H':
                ParseWhole(value, m_info.height);
                break;
            case 'F':
                TakeRatio(value, m_info.rate);
                break;
            case 'A':
                TakeRatio(value, m_info.pixelAspect);
                break;
            case 'I':
                m_scan = value == "t" ? eZI_Field1First : value == "b" ? eZI_Field2First : eZI_Progressive;
                break;
            case 'C':
                TakeLayout(value);
                break;
            case 'X':
                m_meaning.fullRange = m_meaning.fullRange || value == "COLORRANGE=FULL";
                break;
            default:
                break;
        }
    }

    static void TakeRatio(std::string_view value, Rational &ratio) {
        const std::size_t colon = value.find(':');
        Rational read;
        if (colon != std::string_view::npos && ParseWhole(value.substr(0, colon), read.num) &&
            ParseWhole(value.substr(colon + 1), read.den) && read.num > 0 && read.den > 0) {
            ratio = read;
        }
    }

    void TakeLayout(std::string_view value) {
        for (const Layout &l : kLayouts) {
            if (value == l.name) {
                m_layout = l;
                if (!l.chroma) m_meaning.fullRange = true;
                return;
            }
        }
        Fail(m_pipe.Name() + ": YUV4MPEG2 pictures of the kind \"" + std::string(value) +
             "\" are not read; 420, 422, 444 and mono are");
    }

    PipeReader m_pipe;
    SourceInfo m_info;
    eZInterlace m_scan = eZI_Progressive;
    Layout m_layout = kLayouts[0];
    YuvMeaning m_meaning;
    int m_chromaWidth = 0;
    int m_chromaHeight = 0;
    int64_t m_start = 0;    ///< where the first picture begins
    std::size_t m_fileBytes = 0;
    std::vector<uint8_t> m_frame;
    int64_t m_next = 0;
};

}    // namespace

std::unique_ptr<MediaReader> OpenY4mReader(const std::string &path) { return std::make_unique<Y4mReader>(path); }

}    // namespace zkey
