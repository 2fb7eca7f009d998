#include "tests/conformance/stored_model.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace conformance {
namespace {

constexpr HRESULT kEof = static_cast<HRESULT>(0x80070026);

std::string Number(uint64_t value, int bytes) {
    std::string s;
    for (int i = 0; i < bytes; ++i) s += static_cast<char>(value >> (8 * i));
    return s;
}

template <class Record>
std::string Raw(const Record &record, size_t size = sizeof(Record)) {
    return std::string(reinterpret_cast<const char *>(&record), size);
}

std::string TextIn(Name name, bool block) {
    if (block) name = name.substr(0, name.find(u'\0'));
    if (name.empty()) return Number(0, 4);
    std::string s = Number(2 * name.size() + 2, 4);
    for (const char16_t c : name) s += Number(c, 2);
    return s + Number(0, 2);
}

uint32_t HexIn(const Name &digits) {
    uint64_t value = 0;
    for (const char16_t c : digits) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
        if (digit < 0) break;
        value = std::min<uint64_t>(value * 16 + static_cast<uint64_t>(digit), 0xFFFFFFFF);
    }
    return static_cast<uint32_t>(value);
}

// A walk over the bytes of a stored frame.
class Reader {
public:
    explicit Reader(Load &load) : m_load(load) {}

    size_t Left() const { return m_load.bytes.size() - std::min(m_load.at, m_load.bytes.size()); }
    // A field as a whole; of a block the bytes that are there, over what was before. False where it is cut.
    bool Field(void *to, size_t size) {
        const size_t there = std::min(Left(), size);
        if (there != 0 && (m_load.block || there == size)) std::memcpy(to, m_load.bytes.data() + m_load.at, there);
        m_load.at += there;
        return there == size;
    }
    HRESULT Text(Name &name) {
        const size_t begin = m_load.at;
        const HRESULT hr = TextInner(name);
        if (FAILED(hr)) m_load.at = begin;
        return hr;
    }
    // For a stream that is cut.
    bool Ends(bool whole) const { return !whole && !m_load.block; }

private:
    HRESULT TextInner(Name &name) {
        uint32_t count = 0;
        name.clear();
        if (!Field(&count, 4)) return E_FAIL;
        if (count == 0) return S_OK;
        if (count < 2) return E_FAIL;
        if (count > 0x100000) return static_cast<HRESULT>(0x80070005);
        if (count % 2 != 0 || Left() < count) return E_FAIL;
        const auto *from = reinterpret_cast<const uint8_t *>(m_load.bytes.data()) + m_load.at;
        for (size_t i = 0; i + 1 < count; i += 2) name += static_cast<char16_t>(from[i] | from[i + 1] << 8);
        m_load.at += count;
        if (name.back() != 0) return E_FAIL;
        name.pop_back();
        return S_OK;
    }

    Load &m_load;
};

// The media of a stored frame, behind the flag. `done` where the load ends here.
HRESULT LoadMedia(Reader &reader, Load &load, HRESULT opened, Content &into, Wanted &wanted) {
    const bool picture = (load.flags & 3) != 0, sound = (load.flags & 16) != 0;
    uint32_t audioBytes = 0;
    if (reader.Ends(reader.Field(&wanted.bytes, 4)) || reader.Ends(reader.Field(&wanted.section, 8))) return kEof;
    wanted.release = picture;
    wanted.open = picture && wanted.bytes != 0 && wanted.section != 0;
    if (wanted.open && FAILED(opened)) return opened;
    if (reader.Ends(reader.Field(&audioBytes, 4))) return kEof;
    if (sound) {
        if (!load.block && audioBytes > 0x7FFFFFFF) return E_OUTOFMEMORY;
        Bytes audio(std::min<size_t>(audioBytes, reader.Left()));
        if (!load.block && audio.size() < audioBytes) {
            load.at = load.bytes.size();
            return kEof;
        }
        if (!audio.empty()) reader.Field(audio.data(), audio.size());
        into.audio = audio;
    } else if (load.block && audioBytes > reader.Left()) {
        return E_INVALIDARG;
    } else {
        load.at += audioBytes;
    }
    if (reader.Ends(reader.Field(&into.time, 48))) return kEof;
    Z_AV_PROPS props = {};
    if (reader.Ends(reader.Field(&props, 2144))) return kEof;
    if (picture) into.props.vidProps = props.vidProps;
    if (sound) {
        into.props.audProps = props.audProps;
        into.props.ancData = props.ancData;
    }
    return S_OK;
}

HRESULT LoadDatum(Reader &reader, Load &load, Named &into) {
    Name name;
    if (const HRESULT hr = reader.Text(name); FAILED(hr)) return hr;
    uint32_t length = 0;
    if (!reader.Field(&length, 4)) return kEof;
    if (length > 0x7FFFFFFF && !load.block) return E_OUTOFMEMORY;
    Datum datum;
    if (reader.Left() < (length != 0 ? length : 8)) return kEof;
    datum.bytes.resize(length);
    if (length != 0)
        reader.Field(datum.bytes.data(), length);
    else
        reader.Field(&datum.value, 8);
    into.data.Set(name, datum);
    return S_OK;
}

HRESULT LoadNamed(Reader &reader, Load &load, Named &into) {
    uint32_t count = 0;
    if (reader.Ends(reader.Field(&count, 4))) return kEof;
    for (uint32_t i = 0; i < count; ++i)
        if (const HRESULT hr = LoadDatum(reader, load, into); FAILED(hr)) return hr;
    count = 0;
    if (reader.Ends(reader.Field(&count, 4))) return kEof;
    for (uint32_t i = 0; i < count; ++i) {
        Name name, value;
        if (const HRESULT hr = reader.Text(name); FAILED(hr)) return hr;
        if (const HRESULT hr = reader.Text(value); FAILED(hr)) return hr;
        into.texts.Set(name, value);
    }
    if (!load.block && !reader.Field(&load.objects, 4)) return kEof;
    return S_OK;
}

}    // namespace

Name NameOfCode(uint32_t code) {
    Name name;
    for (int i = 0; i < 4; ++i) name += static_cast<char16_t>(code >> (8 * i) & 0xFF);
    if (std::all_of(name.begin(), name.end(), [](char16_t c) { return c >= 0x20 && c <= 0x7E; })) return name;
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", code);
    return Name(text, text + 10);
}

uint32_t CodeOfName(const Name &name) {
    if (name.size() > 4 && name[0] == '0' && name[1] == 'x') return HexIn(name.substr(2));
    if (name.size() > 4 && (name[0] == '#' || name[0] == '{')) return HexIn(name.substr(1));
    uint32_t code = 0;
    for (size_t i = 0; i < std::min<size_t>(name.size(), 4); ++i)
        code |= static_cast<uint32_t>(name[i] > 0xFF ? '?' : name[i]) << (8 * i);
    return code;
}

HRESULT Named::DataSet(const Name &name, int32_t size, const Bytes &bytes, int64_t value) {
    if (name.empty()) return E_INVALIDARG;
    if (size < 0) return data.Remove(name) ? S_OK : S_FALSE;
    Datum datum;
    if (size == 0)
        datum.value = value;
    else
        datum.bytes = bytes;
    data.Set(name, datum);
    return S_OK;
}

void Named::Unpack(const Bytes &block) {
    data = {};
    const auto number = [&block](size_t at) {
        return block[at] | static_cast<uint32_t>(block[at + 1]) << 8 | static_cast<uint32_t>(block[at + 2]) << 16 |
               static_cast<uint32_t>(block[at + 3]) << 24;
    };
    size_t at = 0;
    while (block.size() - at >= 8) {
        const uint32_t code = number(at), length = number(at + 4);
        at += 8;
        const size_t wanted = length == 0 && code != 0 ? 8 : length;
        if (block.size() - at < wanted) return;
        if (code != 0) {
            Datum datum;
            datum.bytes.assign(block.begin() + static_cast<std::ptrdiff_t>(at),
                               block.begin() + static_cast<std::ptrdiff_t>(at + length));
            if (length == 0) std::memcpy(&datum.value, &block[at], 8);
            data.Set(NameOfCode(code), datum);
        }
        at += length;
    }
}

Bytes Named::Pack() const {
    std::string s;
    for (const auto &[name, datum] : data.entries) {
        s += Number(CodeOfName(name), 4) + Number(datum.bytes.empty() ? 8 : datum.bytes.size(), 4);
        s += datum.bytes.empty() ? Raw(datum.value) : std::string(datum.bytes.begin(), datum.bytes.end());
    }
    return Bytes(s.begin(), s.end());
}

HRESULT Named::CopyFrom(const Named &source, int32_t mode) {
    if (mode >= 2) data = {};
    const Bytes block = source.Pack();
    if (block.empty()) return S_FALSE;
    Unpack(block);
    return S_OK;
}

HRESULT Named::TextSet(const Name &name, const Name &value) {
    if (value != u"__zf_remove__") return texts.Remove(name) ? S_OK : S_FALSE;
    texts.Set(name, value);
    return S_OK;
}

std::string StoredFrame(const Content &content, int32_t flags, bool block) {
    const bool picture = (flags & 3) != 0, sound = (flags & 16) != 0, media = picture || sound, data = (flags & 256) != 0;
    std::string s = block ? "" : "ZFRM";
    s += Number(media ? 1 : 0, 4);
    if (media) {
        s += Number(picture ? content.videoBytes : 0, 4) + Number(picture ? static_cast<uint64_t>(content.section) : 0, 8);
        s += Number(sound ? content.audio.size() : 0, 4);
        if (sound) s += std::string(content.audio.begin(), content.audio.end());
        s += Raw(content.time, 44) + Number(0, 4);    // what a record only pads with does not travel
        Z_AV_PROPS props = {};
        if (picture) props.vidProps = content.props.vidProps;
        if (sound) props.audProps = content.props.audProps;
        if (sound) props.ancData = content.props.ancData;
        s += Raw(props);
    }
    s += Number(data ? 1 : 0, 4);
    if (!data) return s;
    s += Number(content.named.data.entries.size(), 4);
    for (const auto &[name, datum] : content.named.data.entries) {
        s += TextIn(name, block) + Number(datum.bytes.size(), 4);
        s += datum.bytes.empty() ? Raw(datum.value) : std::string(datum.bytes.begin(), datum.bytes.end());
    }
    s += Number(content.named.texts.entries.size(), 4);
    for (const auto &[name, value] : content.named.texts.entries) s += TextIn(name, block) + TextIn(value, block);
    return block ? s : s + Number(0, 4);
}

HRESULT LoadFrame(Load &load, HRESULT opened, Content &into, Wanted &wanted) {
    Reader reader(load);
    if (!load.block) {
        char magic[4] = {};
        if (!reader.Field(magic, 4) || std::memcmp(magic, "ZFRM", 4) != 0) return E_FAIL;
    }
    uint32_t flag = 0;
    if (!reader.Field(&flag, 4)) return kEof;
    if (flag != 0 && (load.flags & 19) != 0)
        if (const HRESULT hr = LoadMedia(reader, load, opened, into, wanted); FAILED(hr)) return hr;
    flag = 0;
    if (reader.Ends(reader.Field(&flag, 4))) return kEof;
    if (flag == 0 || (load.flags & 256) == 0) return S_OK;
    const HRESULT hr = LoadNamed(reader, load, into.named);
    return load.block ? S_OK : hr;
}

}    // namespace conformance
