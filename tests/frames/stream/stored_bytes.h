// Stored frames built by hand, and a content to store.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "frames/stream/frame_load.h"
#include "frames/stream/frame_save.h"
#include "tests/support/byte_stream.h"

namespace zck::test {

/// Field by field, low byte first.
class Form {
public:
    Form &Number(uint64_t value, size_t bytes = 4) {
        for (size_t i = 0; i < bytes; ++i) m_bytes += static_cast<char>(value >> (8 * i) & 0xFF);
        return *this;
    }
    Form &Raw(const void *bytes, size_t count) {
        m_bytes.append(static_cast<const char *>(bytes), count);
        return *this;
    }
    Form &Raw(const std::string &bytes) { return Raw(bytes.data(), bytes.size()); }
    /// With its terminating zero; the empty text has no bytes.
    Form &Words(TextView text) {
        Number(text.empty() ? 0 : 2 * text.size() + 2);
        for (const OLECHAR unit : text) Number(unit, 2);
        return text.empty() ? *this : Number(0, 2);
    }
    const std::string &Bytes() const { return m_bytes; }

private:
    std::string m_bytes;
};

/// A content with every kind of field, and its parts.
class SampleContent {
public:
    SampleContent() {
        for (int i = 0; i < 1000; ++i) m_audio.push_back(static_cast<uint8_t>(i * 5 + 1));
        std::memset(static_cast<void *>(&m_content.time), 0x11, sizeof(Z_TIME));
        std::memset(static_cast<void *>(&m_content.props), 0x22, sizeof(Z_AV_PROPS));
        m_content.videoBytes = 0x01020304;
        m_content.section = 0x1122334455667788;
        m_content.audio = m_audio.data();
        m_content.audioBytes = static_cast<uint32_t>(m_audio.size());
        m_content.named = &m_named;
        DataBlobPtr blob;
        EXPECT_EQ(S_OK, DataBlobCreate("12345", 5, 5, blob));
        m_named.data.Set(ZCK_TEXT("five"), blob);
        const uint64_t value = 0x99;
        EXPECT_EQ(S_OK, DataBlobCreate(&value, 8, 0, blob));
        m_named.data.Set(TextView(), blob);
        m_named.texts.Set(ZCK_TEXT("title"), Text(ZCK_TEXT("words")));
        m_named.texts.Set(ZCK_TEXT("none"), Text());
    }

    FrameContent With(int32_t flags) const {
        FrameContent content = m_content;
        content.flags = flags;
        return content;
    }

    /// What the two forms share.
    std::string Body(int32_t flags) const {
        Form form;
        const bool video = (flags & 3) != 0;
        const bool audio = (flags & 16) != 0;
        form.Number(video || audio ? 1 : 0);
        if (video || audio) {
            form.Number(video ? m_content.videoBytes : 0).Number(video ? m_content.section : 0, 8);
            form.Number(audio ? m_audio.size() : 0);
            if (audio) form.Raw(m_audio.data(), m_audio.size());
            form.Raw(std::string(44, '\x11') + std::string(4, '\0'));
            form.Raw(video ? std::string(28, '\x22') + std::string(4, '\0') + std::string(16, '\x22') : std::string(48, '\0'));
            form.Raw(std::string(2092, audio ? '\x22' : '\0') + std::string(4, '\0'));
        }
        form.Number((flags & 256) != 0 ? 1 : 0);
        if ((flags & 256) == 0) return form.Bytes();
        form.Number(2).Words(ZCK_TEXT("five")).Number(5).Raw("12345").Words(TextView()).Number(0).Number(0x99, 8);
        form.Number(2).Words(ZCK_TEXT("title")).Words(ZCK_TEXT("words")).Words(ZCK_TEXT("none")).Words(TextView());
        return form.Bytes();
    }
    std::string Stream(int32_t flags) const {
        return "ZFRM" + Body(flags) + ((flags & 256) != 0 ? Form().Number(0).Bytes() : std::string());
    }

    FrameContent m_content;
    std::vector<uint8_t> m_audio;
    NamedMaps m_named;
};

/// Tells what was asked for, and answers what is wanted.
class PixelsAsked final : public PixelOpener {
public:
    HRESULT Open(uint64_t section, uint32_t size) override {
        ++count;
        m_section = section;
        m_size = size;
        return status;
    }
    HRESULT status = S_OK;
    int count = 0;
    uint64_t m_section = 0;
    uint32_t m_size = 0;
};

inline std::string Said(const CBLOBHolder<CHeapAlloc> &holder) {
    return holder.Size() != 0 ? std::string(reinterpret_cast<const char *>(holder.Data()), holder.Size()) : std::string();
}

}    // namespace zck::test
