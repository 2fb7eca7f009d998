// `INSSBuffer3`: the platform's media sample buffer, the third view of a frame, for the platform's media writers.
#pragma once

#include "sample_buffer_slots.h"
#include "zchromakey/com.h"

/// Answers for the three stages of the interface; a frame is all of them.
template <>
struct ZIidHolder<INSSBuffer> {
    static const IID &Get() {
        static constexpr IID id = {0xE1CD3524, 0x03D7, 0x11D2, {0x9E, 0xED, 0x00, 0x60, 0x97, 0xD2, 0xD7, 0xCF}};
        return id;
    }
};

template <>
struct ZIidHolder<INSSBuffer2> {
    static const IID &Get() {
        static constexpr IID id = {0x4F528693, 0x1035, 0x43FE, {0xB4, 0x28, 0x75, 0x75, 0x61, 0xAD, 0x3A, 0x68}};
        return id;
    }
};

template <>
struct ZIidHolder<INSSBuffer3> {
    static const IID &Get() {
        static constexpr IID id = {0xC87CEAAF, 0x75BE, 0x4BC4, {0x84, 0xEB, 0xAC, 0x27, 0x98, 0x50, 0x76, 0x72}};
        return id;
    }
};
