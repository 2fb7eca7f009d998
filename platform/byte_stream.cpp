#include "platform/byte_stream.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/object.h"

namespace zck {
namespace {

constexpr HRESULT kStgInvalidFunction = StatusOf(0x80030001);
constexpr DWORD kTypeStream = 2;    // what the platform calls a stream in `STATSTG`

/// Bytes in blocks of one size, so that growing copies none. Shared by a stream and its clones.
class Bytes {
public:
    std::mutex lock;

    uint64_t Size() const { return m_size; }

    /// New bytes are 0. Throws `std::bad_alloc`, also above 4 GiB, which is the platform's limit elsewhere.
    void Resize(uint64_t size) {
        if (size > kSizeMax) throw std::bad_alloc();
        if (size < m_size) Fill(size, m_size - size);
        const uint64_t blocks = (size + kBlock - 1) / kBlock;
        while (m_blocks.size() < blocks) m_blocks.push_back(std::make_unique<unsigned char[]>(kBlock));
        m_blocks.resize(static_cast<size_t>(blocks));
        m_size = size;
    }

    /// Calls `body` with each piece of memory in a range that lies inside.
    template <class Body>
    void ForEach(uint64_t from, uint64_t count, Body body) {
        while (count != 0) {
            const auto offset = static_cast<size_t>(from % kBlock);
            const auto piece = static_cast<size_t>(std::min<uint64_t>(count, kBlock - offset));
            body(m_blocks[static_cast<size_t>(from / kBlock)].get() + offset, piece);
            from += piece;
            count -= piece;
        }
    }

private:
    void Fill(uint64_t from, uint64_t count) {
        ForEach(from, count, [](unsigned char *at, size_t n) { std::memset(at, 0, n); });
    }

    static constexpr size_t kBlock = size_t{256} << 10;
    static constexpr uint64_t kSizeMax = 0xFFFFFFFF;
    std::vector<std::unique_ptr<unsigned char[]>> m_blocks;
    uint64_t m_size = 0;
};

class ByteStream final : public CoObject<IStream> {
public:
    explicit ByteStream(std::shared_ptr<Bytes> bytes, uint64_t at = 0) : m_bytes(std::move(bytes)), m_at(at) {}

    HRESULT Z_STDCALL Read(void *pv, ULONG cb, ULONG *pcbRead) override {
        if (pcbRead != nullptr) *pcbRead = 0;
        if (pv == nullptr) return E_POINTER;
        const std::lock_guard lock(m_bytes->lock);
        const uint64_t left = m_bytes->Size() > m_at ? m_bytes->Size() - m_at : 0;
        const auto count = static_cast<ULONG>(std::min<uint64_t>(cb, left));
        auto *to = static_cast<unsigned char *>(pv);
        m_bytes->ForEach(m_at, count, [&](const unsigned char *at, size_t n) {
            std::memcpy(to, at, n);
            to += n;
        });
        m_at += count;
        if (pcbRead != nullptr) *pcbRead = count;
        return S_OK;
    }

    HRESULT Z_STDCALL Write(const void *pv, ULONG cb, ULONG *pcbWritten) override {
        if (pcbWritten != nullptr) *pcbWritten = 0;
        if (pv == nullptr) return E_POINTER;
        return Guarded([&] {
            const std::lock_guard lock(m_bytes->lock);
            if (cb != 0 && m_at + cb > m_bytes->Size()) m_bytes->Resize(m_at + cb);
            const auto *from = static_cast<const unsigned char *>(pv);
            m_bytes->ForEach(m_at, cb, [&](unsigned char *at, size_t n) {
                std::memcpy(at, from, n);
                from += n;
            });
            m_at += cb;
            if (pcbWritten != nullptr) *pcbWritten = cb;
            return S_OK;
        });
    }

    HRESULT Z_STDCALL Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin, ULARGE_INTEGER *plibNewPosition) override {
        const std::lock_guard lock(m_bytes->lock);
        if (dwOrigin > STREAM_SEEK_END) return kStgInvalidFunction;
        const uint64_t from = dwOrigin == STREAM_SEEK_SET ? 0 : dwOrigin == STREAM_SEEK_CUR ? m_at : m_bytes->Size();
        const auto to = static_cast<int64_t>(from + static_cast<uint64_t>(dlibMove.QuadPart));
        if (to < 0) return kStgInvalidFunction;
        m_at = static_cast<uint64_t>(to);
        if (plibNewPosition != nullptr) plibNewPosition->QuadPart = m_at;
        return S_OK;
    }

    HRESULT Z_STDCALL SetSize(ULARGE_INTEGER libNewSize) override {
        return Guarded([&] {
            const std::lock_guard lock(m_bytes->lock);
            m_bytes->Resize(libNewSize.QuadPart);
            return S_OK;
        });
    }

    HRESULT Z_STDCALL CopyTo(IStream *pstm, ULARGE_INTEGER cb, ULARGE_INTEGER *pcbRead, ULARGE_INTEGER *pcbWritten) override {
        if (pcbRead != nullptr) pcbRead->QuadPart = 0;
        if (pcbWritten != nullptr) pcbWritten->QuadPart = 0;
        if (pstm == nullptr) return E_POINTER;
        unsigned char piece[4096];
        HRESULT hr = S_OK;
        uint64_t done = 0;
        uint64_t put = 0;
        while (SUCCEEDED(hr) && done < cb.QuadPart) {
            ULONG got = 0;
            ULONG taken = 0;
            hr = Read(piece, static_cast<ULONG>(std::min<uint64_t>(sizeof(piece), cb.QuadPart - done)), &got);
            if (FAILED(hr) || got == 0) break;
            done += got;
            hr = pstm->Write(piece, got, &taken);
            put += taken;
            if (taken != got) break;
        }
        if (pcbRead != nullptr) pcbRead->QuadPart = done;
        if (pcbWritten != nullptr) pcbWritten->QuadPart = put;
        return hr;
    }

    HRESULT Z_STDCALL Commit(DWORD) override { return S_OK; }
    HRESULT Z_STDCALL Revert() override { return S_OK; }
    HRESULT Z_STDCALL LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return kStgInvalidFunction; }
    HRESULT Z_STDCALL UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return kStgInvalidFunction; }

    HRESULT Z_STDCALL Stat(STATSTG *pstatstg, DWORD) override {
        if (pstatstg == nullptr) return E_POINTER;
        *pstatstg = {};
        const std::lock_guard lock(m_bytes->lock);
        pstatstg->type = kTypeStream;
        pstatstg->cbSize.QuadPart = m_bytes->Size();
        return S_OK;
    }

    HRESULT Z_STDCALL Clone(IStream **ppstm) override {
        if (ppstm == nullptr) return E_POINTER;
        uint64_t at = 0;
        {
            const std::lock_guard lock(m_bytes->lock);
            at = m_at;
        }
        return CreateObject<ByteStream>(nullptr, IID_IStream, reinterpret_cast<void **>(ppstm), m_bytes, at);
    }

protected:
    void *InterfaceFind(REFIID riid) noexcept override {
        return riid == IID_ISequentialStream ? static_cast<ISequentialStream *>(this) : nullptr;
    }

private:
    const std::shared_ptr<Bytes> m_bytes;
    uint64_t m_at;    // guarded by the lock of the bytes
};

}    // namespace

HRESULT ByteStreamCreate(IStream **out) noexcept {
    *out = nullptr;
    return Guarded([&] {
        return CreateObject<ByteStream>(nullptr, IID_IStream, reinterpret_cast<void **>(out), std::make_shared<Bytes>());
    });
}

}    // namespace zck
