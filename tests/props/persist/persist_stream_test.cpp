#include "tests/props/persist/persist_object.h"
#include "tests/support/byte_stream.h"

namespace zck {
namespace {

class PersistStream : public PersistTest {
protected:
    PersistStream() { EXPECT_EQ(m_persist.As(m_stream), S_OK); }

    ComPtr<IPersistStream> m_stream;
};

TEST_F(PersistStream, EveryViewLeadsToEveryOther) {
    const ComPtr<IUnknown> identity = QueryFor<IUnknown>(m_persist.get());
    const IID views[] = {IID_IUnknown, IID_IZPersist, IID_IPersist, IID_IPersistStream};
    for (const IID &from : views) {
        ComPtr<IUnknown> a;
        ASSERT_EQ(m_persist->QueryInterface(from, a.PutVoid()), S_OK);
        for (const IID &to : views) {
            ComPtr<IUnknown> b;
            ASSERT_EQ(a->QueryInterface(to, b.PutVoid()), S_OK);
            EXPECT_EQ(QueryFor<IUnknown>(b.get()), identity);
        }
    }
}

TEST_F(PersistStream, TheClassIsTold) {
    CLSID id = {};
    EXPECT_EQ(m_stream->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == kPersistObjectClass);
    EXPECT_EQ(m_stream->GetClassID(nullptr), E_POINTER);
}

TEST_F(PersistStream, SavesAndLoads) {
    ByteStream memory("##", 2);
    m_object->m_raw = SampleKey();
    EXPECT_EQ(m_stream->Save(memory.stream.get(), 1), S_OK);
    EXPECT_EQ(Calls(), "save |m_config||param();");
    EXPECT_EQ(memory.object->m_bytes.size(), 2 + 4 + 2 * (kSampleText.size() + 1));
    memory.object->m_position = 2;
    m_object->m_raw = {};
    EXPECT_EQ(m_stream->Load(memory.stream.get()), S_OK);
    EXPECT_EQ(Calls(), "load |m_config||param();");
    EXPECT_EQ(Difference(m_object->m_raw, SampleKey()), "");
    EXPECT_EQ(memory.object->m_position, memory.object->m_bytes.size());
}

TEST_F(PersistStream, OnlyAClearingSaveWritesTheDirtyByte) {
    ByteStream memory;
    EXPECT_EQ(m_stream->IsDirty(), S_FALSE);
    EXPECT_EQ(LoadFrom("<a type='2'/>"), S_OK);
    EXPECT_EQ(m_stream->IsDirty(), S_FALSE);
    m_object->DirtySet(true);
    EXPECT_EQ(m_stream->IsDirty(), S_OK);
    EXPECT_EQ(m_stream->Save(memory.stream.get(), 0), S_OK);
    SaveText();
    EXPECT_EQ(SaveTo(Path("a.xml")), S_OK);
    EXPECT_EQ(m_stream->IsDirty(), S_OK);
    m_object->m_status = E_FAIL;
    EXPECT_EQ(m_stream->Save(memory.stream.get(), 1), E_FAIL);
    EXPECT_EQ(m_stream->IsDirty(), S_OK);
    m_object->m_status = S_OK;
    EXPECT_EQ(m_stream->Save(memory.stream.get(), 1), S_OK);
    EXPECT_EQ(m_stream->IsDirty(), S_FALSE);
}

TEST_F(PersistStream, TheSizeIsThatOfTheTextAndSixteen) {
    m_object->m_raw = SampleKey();
    ULARGE_INTEGER size = {};
    EXPECT_EQ(m_stream->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, 2 * kSampleText.size() + 16);
    m_object->m_status = kErrorTimeout;
    EXPECT_EQ(m_stream->GetSizeMax(&size), kErrorTimeout);
    EXPECT_EQ(size.QuadPart, 0u);
}

TEST_F(PersistStream, BadStreamsAreRefusedAndChangeNothing) {
    EXPECT_EQ(m_stream->Load(nullptr), E_POINTER);
    EXPECT_EQ(m_stream->Save(nullptr, 1), E_POINTER);
    EXPECT_EQ(m_stream->GetSizeMax(nullptr), E_POINTER);
    ByteStream none(std::string(4, '\0'));
    EXPECT_EQ(m_stream->Load(none.stream.get()), E_INVALIDARG);
    ByteStream odd(std::string("\1\0\0\0\0\0", 6));
    EXPECT_EQ(m_stream->Load(odd.stream.get()), E_FAIL);
    EXPECT_EQ(odd.object->m_position, 0u);
    ByteStream large(std::string("\0\0\x11\0\0\0", 6));
    EXPECT_EQ(m_stream->Load(large.stream.get()), E_ACCESSDENIED);
    EXPECT_EQ(large.object->m_position, 0u);
    EXPECT_EQ(Calls(), "");
    ByteStream full;
    full.object->m_most = 10;
    EXPECT_EQ(m_stream->Save(full.stream.get(), 0), E_FAIL);
    EXPECT_EQ(full.object->m_position, 0u);
}

}    // namespace
}    // namespace zck
