#include "hosts/zkey/media.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/plugin_door.h"
#include "tests/hosts/zkey/scratch.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

/// All frames of a reader, each as the library would get it, without padding beyond its own rows.
std::vector<Bytes> ReadAll(MediaReader &reader, std::vector<Arrival> *arrivals = nullptr) {
    std::vector<Bytes> frames;
    Arrival a;
    while (reader.Next(a)) {
        const Z_VID_PROPS p = DescribeFrame(a.fcc, reader.Info().width, reader.Info().height, a.scan, 25);
        frames.emplace_back(static_cast<std::size_t>(FrameBytes(p)), uint8_t{0});
        reader.Store(frames.back().data(), p);
        if (arrivals != nullptr) arrivals->push_back(a);
    }
    return frames;
}

TEST(RawReader, GivesFramesOfEveryPackedFormat) {
    const Scratch scratch;
    for (const NamedFormat *f = FormatTable(); f->name != nullptr; ++f) {
        const RawSpec spec = ParseRawSpec(std::string(f->name) + ":6x4@50:top");
        Bytes file;
        for (int64_t i = 0; i < 2 * PipeFrameBytes(f->fcc, 6, 4); ++i) file.push_back(static_cast<uint8_t>(i * 7));
        const std::string path = scratch.Write("in.raw", file);
        const auto reader = OpenRawReader(path, spec);
        EXPECT_EQ(reader->Info().frames, 2) << f->name;
        std::vector<Arrival> arrivals;
        const auto frames = ReadAll(*reader, &arrivals);
        ASSERT_EQ(frames.size(), 2U) << f->name;
        // Chroma rows of fields have no format, and YVYU is YUY2 with its bytes exchanged.
        const eZFCC handed = IsPlanar(f->fcc) ? eZFCC_RGB32 : f->fcc == eZFCC_YVYU ? eZFCC_YUY2 : f->fcc;
        EXPECT_EQ(arrivals[1].fcc, handed) << f->name;
        EXPECT_EQ(arrivals[1].scan, eZI_Field1First) << f->name;
        EXPECT_EQ(arrivals[1].time, 1) << f->name;
        if (handed != f->fcc) continue;
        const auto row = static_cast<std::size_t>(PipeRowBytes(f->fcc, 6));
        const auto step = static_cast<std::size_t>(LibraryRowBytes(f->fcc, 6));
        for (std::size_t i = 0; i < 4 * row; ++i) {
            ASSERT_EQ(frames[1][i / row * step + i % row], file[4 * row + i]) << f->name << " byte " << i;
        }
    }
}

TEST(RawReader, YvyuComesAsYuy2) {
    const Scratch scratch;
    const auto reader = OpenRawReader(scratch.Write("in.raw", {1, 90, 2, 80, 3, 91, 4, 81}), ParseRawSpec("YVYU:4x1"));
    EXPECT_EQ(ReadAll(*reader)[0], (Bytes{1, 80, 2, 90, 3, 81, 4, 91}));
}

TEST(RawReader, PlanesComeInTheirOrder) {
    const Scratch scratch;
    // Of each format: 4 by 2 pixels go over as they are, with rows of 4 bytes.
    const Bytes file = {1, 2, 3, 4, 5, 6, 7, 8, 90, 91, 240, 241};
    for (const char *name : {"I420", "YV12", "NV12"}) {
        const auto reader = OpenRawReader(scratch.Write("in.raw", file), ParseRawSpec(std::string(name) + ":4x2"));
        std::vector<Arrival> arrivals;
        EXPECT_EQ(ReadAll(*reader, &arrivals)[0], file) << name;
        EXPECT_EQ(arrivals[0].fcc, FormatByName(name)->fcc) << name;
    }
}

TEST(RawReader, WhatTheLibraryWouldShowWronglyComesAsRgb) {
    const Scratch scratch;
    // Pixels of pure red in BT.601, in BT.709, and in BT.601 with full range.
    const struct {
        const char *spec;
        Bytes file;
        eZFCC handed;
    } cases[] = {{"I420:1x1", {81, 90, 240}, eZFCC_RGB32},
                 {"YV12:2x2:top", {81, 81, 81, 81, 240, 90}, eZFCC_RGB32},
                 {"NV12:2x2:709", {63, 63, 63, 63, 102, 240}, eZFCC_RGB32},
                 {"I420:2x2:full", {76, 76, 76, 76, 85, 255}, eZFCC_RGB32},
                 {"UYVY:2x1:full", {85, 76, 255, 76}, eZFCC_RGB32},
                 {"HDYC:2x1:full:601", {85, 76, 255, 76}, eZFCC_RGB32}};
    for (const auto &c : cases) {
        const auto reader = OpenRawReader(scratch.Write("in.raw", c.file), ParseRawSpec(c.spec));
        std::vector<Arrival> arrivals;
        const Bytes pixels = ReadAll(*reader, &arrivals)[0];
        EXPECT_EQ(arrivals[0].fcc, c.handed) << c.spec;
        EXPECT_LE(pixels[0], 1) << c.spec;
        EXPECT_LE(pixels[1], 1) << c.spec;
        EXPECT_GE(pixels[2], 253) << c.spec;
    }
}

TEST(RawReader, PairsGoByTheirMatrix) {
    const Scratch scratch;
    const Bytes file = {90, 1, 240, 2, 91, 3, 241, 4};
    const struct {
        const char *spec;
        eZFCC handed;
        Bytes bytes;
    } cases[] = {{"UYVY:4x1:709", eZFCC_HDYC, file},
                 {"HDYC:4x1:601", eZFCC_UYVY, file},
                 {"YUY2:4x1:709", eZFCC_HDYC, {1, 90, 2, 240, 3, 91, 4, 241}},
                 {"YVYU:4x1:709", eZFCC_HDYC, {2, 90, 1, 240, 4, 91, 3, 241}}};
    for (const auto &c : cases) {
        const auto reader = OpenRawReader(scratch.Write("in.raw", file), ParseRawSpec(c.spec));
        std::vector<Arrival> arrivals;
        EXPECT_EQ(ReadAll(*reader, &arrivals)[0], c.bytes) << c.spec;
        EXPECT_EQ(arrivals[0].fcc, c.handed) << c.spec;
    }
}

/// One block of v210, 6 pixels: Cb, Y, Cr, Y and so on count up from `first`.
Bytes V210(uint32_t first) {
    Bytes file(128);
    for (uint32_t i = 0; i < 12; ++i) {
        uint32_t word = 0;
        std::memcpy(&word, &file[i / 3 * 4], 4);
        word |= (first + i) << (10 * (i % 3));
        std::memcpy(&file[i / 3 * 4], &word, 4);
    }
    return file;
}

TEST(RawReader, TenBitsGoAsTheyAreOrRoundedByTheirMatrix) {
    const Scratch scratch;
    std::vector<Arrival> arrivals;
    const std::string path = scratch.Write("in.raw", V210(400));
    EXPECT_EQ(ReadAll(*OpenRawReader(path, ParseRawSpec("v210:6x1")), &arrivals)[0], V210(400));
    EXPECT_EQ(arrivals.back().fcc, eZFCC_v210);
    const Bytes rounded = {100, 100, 101, 101, 101, 101, 102, 102, 102, 102, 103, 103};
    EXPECT_EQ(ReadAll(*OpenRawReader(path, ParseRawSpec("v210:6x1:709")), &arrivals)[0], rounded);
    EXPECT_EQ(arrivals.back().fcc, eZFCC_HDYC);
    const std::string top = scratch.Write("top.raw", V210(1012));
    EXPECT_EQ(ReadAll(*OpenRawReader(top, ParseRawSpec("v210:6x1:709")))[0],
              (Bytes{253, 253, 254, 254, 254, 254, 255, 255, 255, 255, 255, 255}));
    // By size, as clips that say nothing.
    const std::string large = scratch.Write("large.raw", Bytes(3456));
    ReadAll(*OpenRawReader(large, ParseRawSpec("v210:1280x1")), &arrivals);
    EXPECT_EQ(arrivals.back().fcc, eZFCC_HDYC);
}

TEST(RawReader, ABrokenLastFrameIsTold) {
    const Scratch scratch;
    const auto reader = OpenRawReader(scratch.Write("in.raw", Bytes(16 * 3 - 1)), ParseRawSpec("RGB32:2x2"));
    Arrival a;
    EXPECT_TRUE(reader->Next(a));
    EXPECT_TRUE(reader->Next(a));
    EXPECT_THROW(reader->Next(a), Failure);
    EXPECT_THROW(OpenRawReader(scratch.Path("missing.raw"), ParseRawSpec("RGB32:2x2")), Failure);
}

Bytes Y4m(const std::string &head, const Bytes &frame, int count) {
    Bytes out(head.begin(), head.end());
    out.push_back('\n');
    for (int i = 0; i < count; ++i) {
        const std::string mark = i == 0 ? "FRAME\n" : "FRAME Ip\n";
        out.insert(out.end(), mark.begin(), mark.end());
        out.insert(out.end(), frame.begin(), frame.end());
    }
    return out;
}

TEST(Y4mReader, ReadsItsKinds) {
    const Scratch scratch;
    const struct {
        const char *head;
        Bytes frame;
        eZFCC handed;
        eZInterlace scan;
    } cases[] = {
        {"YUV4MPEG2 W2 H2 F30000:1001 Ip A1:1 C420jpeg", {81, 81, 81, 81, 90, 240}, eZFCC_I420, eZI_Progressive},
        {"YUV4MPEG2 W2 H2 F25:1 It", {81, 81, 81, 81, 90, 240}, eZFCC_RGB32, eZI_Field1First},
        {"YUV4MPEG2 W2 H2 F25:1 C444 XCOLORRANGE=LIMITED",
         {81, 81, 81, 81, 90, 90, 90, 90, 240, 240, 240, 240},
         eZFCC_RGB32,
         eZI_Progressive},
        {"YUV4MPEG2 W2 H2 F25:1 C422 XYSCSS=422", {81, 81, 81, 81, 90, 90, 240, 240}, eZFCC_UYVY, eZI_Progressive},
        {"YUV4MPEG2 W2 H2 F25:1 C422 XCOLORRANGE=FULL", {76, 76, 76, 76, 85, 85, 255, 255}, eZFCC_RGB32, eZI_Progressive},
    };
    for (const auto &c : cases) {
        const auto reader = OpenY4mReader(scratch.Write("in.y4m", Y4m(c.head, c.frame, 3)));
        std::vector<Arrival> arrivals;
        const auto frames = ReadAll(*reader, &arrivals);
        ASSERT_EQ(frames.size(), 3U) << c.head;
        EXPECT_EQ(arrivals[2].fcc, c.handed) << c.head;
        EXPECT_EQ(arrivals[2].scan, c.scan) << c.head;
        if (c.handed == eZFCC_I420) {
            EXPECT_EQ(frames[2], (Bytes{81, 81, 0, 0, 81, 81, 0, 0, 90, 0, 240, 0}));
        } else if (c.handed == eZFCC_UYVY) {
            EXPECT_EQ(frames[2], (Bytes{90, 81, 240, 81, 90, 81, 240, 81}));
        } else {
            EXPECT_LE(frames[2][0], 1) << c.head;
            EXPECT_LE(frames[2][1], 1) << c.head;
            EXPECT_GE(frames[2][2], 253) << c.head;
        }
    }
}

TEST(Y4mReader, HighDefinitionIsBt709) {
    const Scratch scratch;
    const auto reader = OpenY4mReader(scratch.Write("in.y4m", Y4m("YUV4MPEG2 W1280 H2 F25:1 C422", Bytes(1280 * 4, 128), 1)));
    std::vector<Arrival> arrivals;
    ReadAll(*reader, &arrivals);
    ASSERT_EQ(arrivals.size(), 1U);
    EXPECT_EQ(arrivals[0].fcc, eZFCC_HDYC);
}

TEST(Y4mReader, MonoIsGreyOfFullRange) {
    const Scratch scratch;
    const auto reader = OpenY4mReader(scratch.Write("in.y4m", Y4m("YUV4MPEG2 W2 H1 F25:1 Cmono", {0, 255}, 1)));
    EXPECT_EQ(ReadAll(*reader)[0], (Bytes{0, 0, 0, 255, 255, 255, 255, 255}));
}

TEST(Y4mReader, DamageIsTold) {
    const Scratch scratch;
    const auto opens = [&](const Bytes &file) {
        const auto reader = OpenY4mReader(scratch.Write("in.y4m", file));
        ReadAll(*reader);
    };
    const std::string head = "YUV4MPEG2 W2 H2 F25:1 C420jpeg";
    EXPECT_THROW(opens({'R', 'I', 'F', 'F', '\n'}), Failure);
    EXPECT_THROW(opens({}), Failure);
    EXPECT_THROW(opens(Y4m("YUV4MPEG2 W0 H2", {}, 0)), Failure);
    EXPECT_THROW(opens(Y4m("YUV4MPEG2 W2 H2 C420p10", {}, 0)), Failure);
    EXPECT_THROW(opens(Y4m(head, {81, 81, 81}, 1)), Failure);
    EXPECT_THROW(opens(Y4m(head, {81, 81, 81, 81, 90, 240, 7}, 2)), Failure);
    EXPECT_NO_THROW(opens(Y4m(head, {81, 81, 81, 81, 90, 240}, 2)));
}

Delivery To(const std::string &path, Finish finish, int width, int height) {
    Delivery d;
    d.path = path;
    d.finish = finish;
    d.source.width = width;
    d.source.height = height;
    return d;
}

TEST(RawWriter, WritesRowsWithoutPadding) {
    const Scratch scratch;
    const Bytes pixels = {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 9, 10, 11, 12, 13, 14, 15, 16, 0, 0, 0, 0};
    const auto writer = OpenRawWriter(To(scratch.Path("out.raw"), Finish::Premultiplied, 2, 2));
    writer->Write({pixels.data(), 12, 2, 2}, 0);
    writer->Close();
    EXPECT_EQ(scratch.Read("out.raw"), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
}

TEST(Y4mWriter, ComesBackAsItWent) {
    const Scratch scratch;
    for (const int width : {16, 1280}) {
        Image image;
        image.Resize(width, 2);
        for (std::size_t i = 0; i < image.bytes.size(); ++i) image.bytes[i] = static_cast<uint8_t>(i * 31 + i / 97);
        const auto writer = OpenY4mWriter(To(scratch.Path("out.y4m"), Finish::Over, width, 2));
        writer->Write(image.View(), 0);
        writer->Close();
        const Bytes back = ReadAll(*OpenY4mReader(scratch.Path("out.y4m")))[0];
        for (std::size_t i = 0; i < back.size(); ++i) {
            if (i % 4 != 3) {
                ASSERT_NEAR(back[i], image.bytes[i], 3) << width << " byte " << i;
            }
        }
    }
}

TEST(Y4mWriter, KeepsTheMatteToTheByteAndRefusesAlpha) {
    const Scratch scratch;
    Image image;
    image.Resize(256, 1);
    for (int x = 0; x < 256; ++x) std::fill_n(image.Row(0) + 4 * x, 3, static_cast<uint8_t>(x));
    const auto writer = OpenY4mWriter(To(scratch.Path("out.y4m"), Finish::Matte, 256, 1));
    writer->Write(image.View(), 0);
    writer->Close();
    const Bytes back = ReadAll(*OpenY4mReader(scratch.Path("out.y4m")))[0];
    for (std::size_t x = 0; x < 256; ++x) ASSERT_EQ(back[4 * x], x);
    EXPECT_THROW(OpenY4mWriter(To(scratch.Path("out.y4m"), Finish::Straight, 2, 2)), Failure);
}

TEST(Media, TheNameTellsTheKindOfOutput) {
    EXPECT_EQ(NaturalAlpha("-", ""), Finish::Premultiplied);
    EXPECT_EQ(NaturalAlpha("a.raw", ""), Finish::Premultiplied);
    EXPECT_EQ(NaturalAlpha("a.mov", "raw"), Finish::Premultiplied);
    EXPECT_EQ(NaturalAlpha("a.mov", ""), Finish::Straight);
    EXPECT_EQ(NaturalAlpha("a.png", ""), Finish::Straight);
    EXPECT_TRUE(IsStill("a.PNG", ""));
    EXPECT_FALSE(IsStill("a_%04d.png", ""));
    EXPECT_FALSE(IsStill("a.mov", ""));
    EXPECT_FALSE(IsStill("a.png", "raw"));
}

TEST(Background, CheckerAndColour) {
    Keyer keyer;
    const auto checker = OpenBackground("checker", 41, 21, keyer);
    const ImageView v = checker->At(0);
    EXPECT_EQ(v.Row(0)[0], 0xC8);
    EXPECT_EQ(v.Row(0)[4 * 20], 0x50);
    EXPECT_EQ(v.Row(20)[4 * 20], 0xC8);
    const auto plain = OpenBackground("102030", 2, 2, keyer);
    const ImageView p = plain->At(0);
    EXPECT_EQ(p.Row(1)[4], 0x30);
    EXPECT_EQ(p.Row(1)[5], 0x20);
    EXPECT_EQ(p.Row(1)[6], 0x10);
    EXPECT_THROW(OpenBackground("no such file.png", 2, 2, keyer), Failure);
}

}    // namespace
