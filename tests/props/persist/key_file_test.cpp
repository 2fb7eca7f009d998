// Files that somebody else wrote: by hand, by an editor, in another encoding.
#include "tests/props/persist/persist_object.h"

namespace zck {
namespace {

/// Loads bytes as a file.
class KeyFile : public PersistTest {
protected:
    HRESULT LoadBytes(std::string_view bytes) {
        Put("key.xml", bytes);
        m_object->m_raw = {};
        m_object->m_raw.nInverseKey = -77;
        return LoadFrom(Path("key.xml"));
    }
    /// What the sample's bytes in some encoding are read as, and saved as again.
    void ExpectSample(std::string_view bytes) {
        EXPECT_EQ(LoadBytes(bytes), S_OK);
        EXPECT_EQ(SaveText(), kSampleText);
    }
    static std::string Units(std::string_view ascii, bool highFirst) {
        std::string bytes;
        for (const char c : ascii) bytes += highFirst ? std::string{'\0', c} : std::string{c, '\0'};
        return bytes;
    }
};

TEST_F(KeyFile, EveryEncodingIsRead) {
    const std::string text = kSampleText;
    ExpectSample(text);
    ExpectSample("\xEF\xBB\xBF" + text);
    ExpectSample("<?xml version='1.0' encoding='utf-8'?>\r\n" + text);
    ExpectSample("<?xml version='1.0' encoding='UTF-7'?>\r\n" + text);
    ExpectSample(Units(text, false));
    ExpectSample(Units(text, true));
    ExpectSample("\xFF\xFE" + Units(text, false));
    ExpectSample("\xFE\xFF" + Units(text, true));
    ExpectSample(Units(text, false) + "\n");    // a last odd byte is dropped
}

TEST_F(KeyFile, AWordOfUtf7IsReadAsUtf8WhereItIsDeclared) {
    // "+AD0-" is "=" in UTF-7. Declared as such, the text is taken for UTF-8 all the same, and the sign stays what it is.
    EXPECT_EQ(LoadBytes("<?xml encoding='utf-7'?><c keys='1'><key smooth+AD0-'9' alpha='\xC2\xB2' cancel.range='3'/></c>"),
              S_OK);
    EXPECT_EQ(m_object->m_raw.arrKeys[0].nSmoothRange, 0);
    EXPECT_EQ(m_object->m_raw.arrKeys[0].nCancelRange, 3);
    EXPECT_EQ(LoadBytes("+/v8-<c keys='1'><key smooth+AD0-'9'/></c>"), S_OK);
    EXPECT_EQ(m_object->m_raw.arrKeys[0].nSmoothRange, 9);
}

TEST_F(KeyFile, CommentsCaseOrderAndStrangersDoNotMatter) {
    EXPECT_EQ(LoadBytes("<?xml version='1.0'?>\n<!-- the blue screen of <b>studio</b> 2 -->\n"
                        "<M_Config inverse=1 KEYS=\"2\" Type='2'\n   note='it is \"ours\"' transparent.max='200'>\n"
                        "\t<KEY smooth='7' VALUE='0x10'><!-- first --></KEY>\n"
                        "\t<Key delta=0x20 colour='red'><info/></Key>\n"
                        "\t<stranger keys='9'><adjust power='9'/></stranger>\n"
                        "\t<Adjust smooth='0.5'><Range BSV='25%'/><depth z='1'/></Adjust>\n"
                        "</M_Config>\n"),
              S_OK);
    CHROMA_KEY_RAW expected = {};
    expected.eType = eCKT_RGB;
    expected.nKeysUsed = 2;
    expected.arrKeys[0].nValue = 0x10;
    expected.arrKeys[0].nSmoothRange = 7;
    expected.arrKeys[1].nDelta = 0x20;
    expected.nMaxTransparent = 200;
    expected.nInverseKey = 1;
    EXPECT_EQ(Difference(m_object->m_raw, expected), "");
    CK_ADJUST adjust = AdjustFromRaw(expected, -1);
    adjust.dblSmooth = 0.5;
    adjust.rangeAdjust.dblRangeB_S_V = 0.25;
    EXPECT_EQ(Difference(m_object->m_adjust, adjust), "");
}

TEST_F(KeyFile, BrokenFilesGiveWhatTheyHold) {
    EXPECT_EQ(LoadBytes("<m_config type='3' keys='1'><key value='5' smooth='6'"), S_OK);
    EXPECT_EQ(m_object->m_raw.eType, eCKT_HLS);
    EXPECT_EQ(m_object->m_raw.arrKeys[0].nValue, 5);
    EXPECT_EQ(m_object->m_raw.arrKeys[0].nSmoothRange, 6);
    EXPECT_EQ(LoadBytes("</x> garbage <m_config type='4' keys='1'></wrong><key value='5'></m_config>"), S_OK);
    EXPECT_EQ(m_object->m_raw.eType, eCKT_YUV);
    EXPECT_EQ(m_object->m_raw.arrKeys[0].nValue, 5);
    // An entry that is never closed takes what follows into itself.
    EXPECT_EQ(LoadBytes("<m_config keys='2'><key value='5'><key value='6'/><adjust power='1'/></m_config>"), S_OK);
    EXPECT_EQ(m_object->m_raw.arrKeys[1].nValue, 5);
    EXPECT_EQ(m_object->m_adjust.dblPower, 0.0);
}

TEST_F(KeyFile, AnEmptyKeyIsAKey) {
    EXPECT_EQ(LoadBytes("<a/>"), S_OK);
    EXPECT_EQ(Difference(m_object->m_raw, CHROMA_KEY_RAW{}), "");
    EXPECT_EQ(Difference(m_object->m_adjust, AdjustFromRaw({}, -1)), "");
}

TEST_F(KeyFile, TheTextItselfIsAsGoodAsItsFile) {
    EXPECT_EQ(LoadFrom(kSampleText), S_OK);
    EXPECT_EQ(Difference(m_object->m_raw, SampleKey()), "");
    EXPECT_EQ(SaveText(), kSampleText);
}

}    // namespace
}    // namespace zck
