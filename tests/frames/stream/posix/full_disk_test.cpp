// A frame into a stream over a file on a full disk: the stream's failure comes back, what was written stays and loads.
#include <gtest/gtest.h>

#include "frames/stream/frame_load.h"
#include "frames/stream/frame_save.h"
#include "platform/files.h"
#include "platform/status.h"
#include "tests/frames/stream/stored_bytes.h"
#include "tests/support/posix/small_shm.h"

namespace zck::test {
namespace {

constexpr char kPath[] = "/dev/shm/frame.zf";

class CFileStream : public CByteStream {
public:
    bool Open() { return SUCCEEDED(m_file.Open(TextFromUtf8(kPath), FileMode::Create)); }
    HRESULT Z_STDCALL Write(const void *pv, ULONG cb, ULONG *pcbWritten) override {
        size_t put = 0;
        const HRESULT hr = m_file.WriteAt(m_position, pv, cb, put);
        m_position += put;
        if (pcbWritten != nullptr) *pcbWritten = static_cast<ULONG>(put);
        return hr;
    }

private:
    File m_file;
};

std::string SaveUntilFull(const SampleContent &sample, HRESULT &saved) {
    ComPtr<IStream> stream;
    if (FAILED(CreateObject<CFileStream>(nullptr, IID_IStream, stream.PutVoid()))) return {};
    if (!static_cast<CFileStream *>(stream.get())->Open()) return {};
    saved = FrameSaveStream(sample.With(eZFC_Full), stream.get());
    stream.Reset();
    std::string bytes;
    FileRead(TextFromUtf8(kPath), 1 << 24, bytes);
    return bytes;
}

TEST(FrameOnAFullDisk, TheStreamsFailureComesBack) {
    RunInSmallSharedMemory("64k", [] {
        SampleContent sample;
        DataBlobPtr blob;
        NEED(SUCCEEDED(DataBlobCreate("12345", 5, 5, blob)));
        sample.m_named.data.Set(ZCK_TEXT("before"), blob);
        const std::string large(100000, 'x');
        NEED(SUCCEEDED(DataBlobCreate(large.data(), 100000, 100000, blob)));
        sample.m_named.data.Set(ZCK_TEXT("large"), blob);
        HRESULT saved = S_OK;
        const std::string bytes = SaveUntilFull(sample, saved);
        NEED(saved == kErrorDiskFull);
        NEED(bytes.size() == 65536);

        ByteStream stream(bytes);
        PixelsAsked pixels;
        FrameLoad load;
        load.flags = eZFC_Full & ~(eZFC_Video | eZFC_VideoRef);
        NEED(FrameLoadStream(stream.stream.get(), pixels, load) == kErrorHandleEof);
        NEED(load.bTime && load.bAudio);
        NEED(Said(load.audio) == std::string(sample.m_audio.begin(), sample.m_audio.end()));
        // The value that is not whole is not there; those before it are.
        NEED(load.named.data.Count() == 3);
        return true;
    });
}

TEST(FrameOnAFullDisk, NoRoomForTheMark) {
    RunInSmallSharedMemory("64k", [] {
        NEED(FillSharedMemory());
        HRESULT saved = S_OK;
        NEED(SaveUntilFull(SampleContent(), saved).empty());
        NEED(saved == kErrorDiskFull);
        return true;
    });
}

}    // namespace
}    // namespace zck::test
