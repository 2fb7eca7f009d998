// The configuration in a stream of the system.
#include "tests/props/persist/persist_object.h"

namespace zck {
namespace {

TEST_F(PersistTest, AStreamOfTheSystemKeepsAKey) {
    ComPtr<IPersistStream> persist;
    ASSERT_EQ(m_persist.As(persist), S_OK);
    ComPtr<IStream> stream;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
    m_object->m_raw = SampleKey();
    EXPECT_EQ(persist->Save(stream.get(), TRUE), S_OK);
    m_object->m_raw = {};
    ASSERT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(persist->Load(stream.get()), S_OK);
    EXPECT_EQ(Difference(m_object->m_raw, SampleKey()), "");
    EXPECT_EQ(persist->Load(stream.get()), E_FAIL);    // nothing is left
}

}    // namespace
}    // namespace zck
