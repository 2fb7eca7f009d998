// Names, data and stored frames: what a frame holds beside its sound, byte by byte. Nothing here is shared with the library but
// the public records and statuses.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/wav_model.h"

namespace conformance {

using Name = std::u16string;

// Entries in the order of their first insertion, found by the low byte of each character, with the bit set that makes letters
// small.
template <class Value>
class NameList {
public:
    Value *Find(const Name &name) {
        for (auto &[known, value] : entries)
            if (Folded(known) == Folded(name)) return &value;
        return nullptr;
    }
    void Set(const Name &name, Value value) {
        if (Value *known = Find(name))
            *known = std::move(value);
        else
            entries.emplace_back(name, std::move(value));
    }
    bool Remove(const Name &name) {
        for (size_t i = 0; i < entries.size(); ++i)
            if (Folded(entries[i].first) == Folded(name)) {
                entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
                return true;
            }
        return false;
    }

    std::vector<std::pair<Name, Value>> entries;

private:
    static std::string Folded(const Name &name) {
        std::string s;
        for (const char16_t c : name) s += static_cast<char>((c & 0xFF) | 0x20);
        return s;
    }
};

// Bytes, or eight bytes that came in place of an address.
struct Datum {
    Bytes bytes;
    int64_t value = 0;
    int32_t Size() const { return static_cast<int32_t>(bytes.size()); }
};

Name NameOfCode(uint32_t code);
uint32_t CodeOfName(const Name &name);

struct Named {
    NameList<Datum> data;
    NameList<Name> texts;

    HRESULT DataSet(const Name &name, int32_t size, const Bytes &bytes, int64_t value);
    // Replaces all data by those of a packed block.
    void Unpack(const Bytes &block);
    Bytes Pack() const;
    HRESULT CopyFrom(const Named &source, int32_t mode);
    HRESULT TextSet(const Name &name, const Name &value);
};

// All of a frame that goes into a stored one.
struct Content {
    uint32_t videoBytes = 0;
    int64_t section = 0;
    Bytes audio;
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    Named named;
};

// Without objects.
std::string StoredFrame(const Content &content, int32_t flags, bool block);

struct Load {
    const std::string &bytes;
    int32_t flags;
    bool block;
    size_t at = 0;
    uint32_t objects = 0;    // that a stream says are behind its texts
};

// What a load asks for of pixels; the section is opened by the caller's word.
struct Wanted {
    bool release = false;    // the old pixels go
    bool open = false;
    uint32_t bytes = 0;
    int64_t section = 0;
};

// Reads a stored frame into the content. `opened` is what opening the section gives; `wanted` says what was asked.
HRESULT LoadFrame(Load &load, HRESULT opened, Content &into, Wanted &wanted);

}    // namespace conformance
