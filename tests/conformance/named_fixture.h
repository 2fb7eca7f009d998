// Frames with named data beside the model of it.
#pragma once

#include <string>

#include "tests/conformance/dice.h"
#include "tests/conformance/frame_fixture.h"
#include "tests/conformance/stored_model.h"

namespace conformance {

inline Bstr TextOf(const Name &name) {
    zck::Text text;
    for (const char16_t c : name) text += static_cast<OLECHAR>(c);
    return Bstr(text);
}

// Takes the text over.
inline Name NameFrom(BSTR text) {
    Name name;
    for (const OLECHAR c : zck::ViewOf(text)) name += static_cast<char16_t>(c);
    SysFreeString(text);
    return name;
}

inline std::string Say(const Name &name) {
    std::string s;
    for (const char16_t c : name)
        s += c >= 0x20 && c < 0x7F ? std::string(1, static_cast<char>(c)) : "<" + std::to_string(c) + ">";
    return s;
}

inline std::string Say(const Datum &datum) {
    std::string s = std::to_string(datum.Size()) + ":";
    if (datum.bytes.empty()) return s + std::to_string(datum.value);
    for (const uint8_t b : datum.bytes) s += std::to_string(b) + " ";
    return s;
}

inline Bytes BytesAt(int64_t address, int32_t size) {
    return size > 0 ? Bytes(PointerOf(address), PointerOf(address) + size) : Bytes();
}

// All names and values of a frame in their order.
inline std::string Listed(IZFFrame *frame) {
    std::string s;
    for (int32_t i = 0;; ++i) {
        BSTR name = nullptr;
        Datum datum;
        int32_t size = 77;
        int64_t address = 77;
        if (frame->ZFDataGetByIndex(i, &name, &size, &address) != S_OK) break;
        datum.bytes = BytesAt(address, size);
        datum.value = address;
        s += Say(NameFrom(name)) + "=" + Say(datum) + "\n";
    }
    for (int32_t i = 0;; ++i) {
        BSTR name = nullptr, value = nullptr;
        if (frame->ZFTextGetByIndex(i, &name, &value) != S_OK) break;
        s += Say(NameFrom(name)) + "='" + Say(NameFrom(value)) + "'\n";
    }
    return s;
}

inline std::string Listed(const Named &named) {
    std::string s;
    for (const auto &[name, datum] : named.data.entries) s += Say(name) + "=" + Say(datum) + "\n";
    for (const auto &[name, value] : named.texts.entries) s += Say(name) + "='" + Say(value) + "'\n";
    return s;
}

// Names that meet one another, that are codes, and that are neither.
inline Name AnyName(Dice &dice) {
    using namespace std::string_literals;
    static const Name kNames[] = {u"C608"s,
                                  u"c608"s,
                                  u"C708"s,
                                  u"806C"s,
                                  u"LongName"s,
                                  u"LongNames"s,
                                  u"longname"s,
                                  u""s,
                                  u"a"s,
                                  u"A"s,
                                  u"\u0141"s,
                                  u"_"s,
                                  u"\x7F"s,
                                  u"0x00000001"s,
                                  u"0x123456789"s,
                                  u"0xZ"s,
                                  u"0X11"s,
                                  u"0x12G4"s,
                                  u"#41424344"s,
                                  u"#zz00"s,
                                  u"{6B0F1D32-8E54}"s,
                                  u"#1"s,
                                  u"\u00E9tat"s,
                                  u"\u4E00\u4E01"s,
                                  u"ab\x01"
                                  u"d"s,
                                  u"0x0000"s,
                                  u"nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"s};
    return kNames[dice(0, static_cast<int32_t>(std::size(kNames)) - 1)];
}

}    // namespace conformance
