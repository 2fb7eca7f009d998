// A frame of one process, opened by its section's number in another.
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"
#include "tests/support/child_process.h"

namespace zck::test {
namespace {

constexpr int32_t kWidth = 64;
constexpr int32_t kHeight = 48;

// Process B: a stand-in answers what the parent's frame answers; the frame itself crosses by the host's own means.
int CloneElsewhere(const std::vector<std::string> &args) {
    ForeignState state;
    state.process = static_cast<uint32_t>(std::stoul(args[0]));
    state.section = static_cast<int64_t>(std::stoull(args[1], nullptr, 16));
    state.offset = std::stoi(args[2]);
    state.videoSize = std::stoi(args[3]);
    state.props.vidProps = Record(eZFCC_UYVY, kWidth, kHeight);
    state.audio = Pattern(40);
    if (state.Local()) return 2;

    ComPtr<IZFrames_I> factory;
    if (FAILED(FrameFactoryCreate(ZIidOf<IZFrames_I>(), factory.PutVoid()))) return 3;
    auto source = ForeignCreate<ForeignQuorvex, IZFrame_I>(state);
    ComPtr<IZFrame_I> reference;
    if (factory->FrameMakeLocal(source.get(), reference.Put(), 0) != S_OK) return 4;
    ComPtr<IZFrame_I> copy;
    if (factory->FrameCloneConvert(source.get(), copy.Put(), eZFC_Full, eZFCC_Default) != S_OK) return 5;
    source.Reset();

    // A clone of a clone borrows the same section, and outlives the clone.
    ComPtr<IZFrame> again;
    if (reference->FrameClone(again.Put(), eZFC_Reference, eZFCC_Default) != S_OK) return 10;
    reference = QueryFor<IZFrame_I>(again.get());
    again.Reset();
    int64_t section = 0;
    int32_t offset = -1;
    if (reference->FrameBufferIdGet(&section) != S_OK || section != state.section) return 11;
    if (reference->FrameVideoOffsetGet(&offset) != S_OK || offset != state.offset) return 12;

    for (const auto &frame : {reference, copy}) {
        const Bytes video = VideoOf(frame);
        if (video.size != state.videoSize) return 6;
        for (int32_t i = 0; i < video.size; ++i) {
            if (video.data()[i] != PatternByte(static_cast<size_t>(i + state.offset))) return 7;
        }
        if (AudioOf(frame).Copy() != Pattern(40)) return 8;
    }
    // What is written here is seen there.
    std::cout << "read" << std::endl;
    std::string line;
    std::getline(std::cin, line);
    if (VideoOf(reference).data()[1] != 0xA5 || VideoOf(copy).data()[1] == 0xA5) return 9;
    VideoOf(reference).data()[2] = 0x3C;
    reference.Reset();
    copy.Reset();
    return 0;
}
const ChildRole kCloneElsewhere("clone-elsewhere", CloneElsewhere);

// Process B again, for the other family: what crosses is the stored form, and the section that it names.
int CloneStoredElsewhere(const std::vector<std::string> &args) {
    ForeignState state;
    state.process = static_cast<uint32_t>(std::stoul(args[0]));
    state.offset = std::stoi(args[1]);
    if (state.Local()) return 2;
    std::string line;
    std::getline(std::cin, line);
    for (size_t i = 0; i + 1 < line.size(); i += 2) {
        state.block.push_back(static_cast<uint8_t>(std::stoi(line.substr(i, 2), nullptr, 16)));
    }
    ComPtr<IZFFactory> factory;
    if (FAILED(FrameFactoryCreate(ZIidOf<IZFFactory>(), factory.PutVoid()))) return 3;
    ComPtr<IZFFrame> local;
    {
        const auto source = ForeignCreate<ForeignBoth, IZFFrame>(state);
        if (factory->ZFFrameLocal(source.get(), local.Put(), 0) != S_OK) return 4;
    }
    const auto frame = As<IZFrame>(local);
    const Bytes video = VideoOf(frame);
    for (int32_t i = 0; i < video.size; ++i) {
        if (video.data()[i] != PatternByte(static_cast<size_t>(i + state.offset))) return 6;
    }
    if (AudioOf(frame).Copy() != Pattern(400)) return 7;
    int64_t value = 0;
    if (local->ZFDataGet(Bstr(ZCK_TEXT("a long name")).get(), nullptr, &value) != S_OK || value != 42) return 8;
    video.data()[2] = 0x3C;
    return 0;
}
const ChildRole kCloneStoredElsewhere("clone-stored-elsewhere", CloneStoredElsewhere);

std::string Hex(int64_t id) {
    char text[17];
    std::snprintf(text, sizeof(text), "%" PRIX64, static_cast<uint64_t>(id));
    return text;
}

class FrameProcesses : public FrameTest {
protected:
    /// The stored form of a reference in one line.
    static void StoredLine(const ComPtr<IZFFrame> &frame, std::string &line) {
        int32_t size = 0;
        int64_t block = 0;
        ASSERT_EQ(S_OK, frame->ZFSaveAll(&size, &block, eZFC_Reference));
        for (int32_t i = 0; i < size; ++i) {
            constexpr char kDigits[] = "0123456789ABCDEF";
            const uint8_t byte = At<uint8_t>(block)[i];
            line += {kDigits[byte >> 4], kDigits[byte & 15]};
        }
        CoTaskMemFree(At<void>(block));
    }

    void Cross(const ComPtr<IZFrame_I> &frame) {
        const std::vector<uint8_t> before = VideoOf(frame).Copy();
        int64_t section = 0;
        int32_t offset = 0;
        int32_t size = 0;
        ASSERT_EQ(S_OK, frame->FrameBufferIdGet(&section));
        ASSERT_EQ(S_OK, frame->FrameVideoOffsetGet(&offset));
        ASSERT_EQ(S_OK, frame->FrameInfoGet(nullptr, nullptr, &size, nullptr));
        ChildProcess child;
        ASSERT_TRUE(child.Start("clone-elsewhere", {std::to_string(CurrentProcessId()), Hex(section), std::to_string(offset),
                                                    std::to_string(size)}));
        EXPECT_EQ("read", child.ReadLine());
        VideoOf(frame).data()[1] = 0xA5;
        child.Send("go on");
        EXPECT_EQ(0, child.Wait());
        EXPECT_EQ(0x3C, VideoOf(frame).data()[2]);
        std::memcpy(VideoOf(frame).data(), before.data(), before.size());
    }
};

TEST_F(FrameProcesses, AFrameOfTheOtherFamilyIsClonedElsewhere) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, kWidth, kHeight));
    tagRECT rect = {};
    rect.left = 8;
    rect.top = 10;
    rect.right = 40;
    rect.bottom = 40;
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, frame->FrameCut(0, &rect, cut.Put()));
    for (const auto &source : {frame, As<IZFrame_I>(cut)}) {
        std::string line;
        int32_t offset = 0;
        EXPECT_EQ(S_OK, As<IZFFrame>(source)->ZFDataSet(Bstr(ZCK_TEXT("a long name")).get(), 0, 42));
        ASSERT_EQ(S_OK, source->FrameVideoOffsetGet(&offset));
        ASSERT_NO_FATAL_FAILURE(StoredLine(As<IZFFrame>(source), line));
        VideoOf(source).data()[2] = PatternByte(static_cast<size_t>(offset) + 2);
        ChildProcess child;
        ASSERT_TRUE(child.Start("clone-stored-elsewhere", {std::to_string(CurrentProcessId()), std::to_string(offset)}));
        child.Send(line);
        EXPECT_EQ(0, child.Wait());
        EXPECT_EQ(0x3C, VideoOf(source).data()[2]);
    }
}

TEST_F(FrameProcesses, AFrameIsReadAndClonedElsewhere) { Cross(Frame(Record(eZFCC_UYVY, kWidth, kHeight))); }

TEST_F(FrameProcesses, ACutFrameStartsWhereItStartsHere) {
    const auto frame = Frame(Record(eZFCC_UYVY, kWidth, kHeight));
    tagRECT rect = {};
    rect.left = 8;
    rect.top = 10;
    rect.right = 40;
    rect.bottom = 40;
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, frame->FrameCut(0, &rect, cut.Put()));
    Cross(As<IZFrame_I>(cut));
}

TEST_F(FrameProcesses, AReferenceCloneNamesTheSection) {
    const auto frame = Frame(Record(eZFCC_UYVY, kWidth, kHeight));
    Cross(As<IZFrame_I>(Clone(frame.get(), eZFC_Reference)));
}

TEST_F(FrameProcesses, CutsOfCutsAndTheirClonesStartWhereTheyStartHere) {
    const auto frame = Frame(Record(eZFCC_UYVY, kWidth, kHeight));
    tagRECT rect = {};
    rect.left = 4;
    rect.top = 6;
    rect.right = 60;
    rect.bottom = 46;
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, frame->FrameCut(0, &rect, cut.Put()));
    Cross(As<IZFrame_I>(Clone(cut.get(), eZFC_Reference)));
    ComPtr<IZFrame> again;
    ASSERT_EQ(S_OK, cut->FrameCut(2, &rect, again.Put()));
    cut.Reset();
    Cross(As<IZFrame_I>(again));
    Cross(As<IZFrame_I>(Clone(again.get(), eZFC_Reference)));
}

}    // namespace
}    // namespace zck::test
