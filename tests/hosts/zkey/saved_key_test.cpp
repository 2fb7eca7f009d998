// Keys as files: zkey saves the one in use, and keys with one that was saved or written by hand.
#include <gtest/gtest.h>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/scene/scene.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

class SavedKey : public testing::Test {
protected:
    void SetUp() override {
        zck::SceneParams p;
        p.width = 96;
        p.height = 54;
        m_scratch.Write("in.raw", zck::RenderScene(p, 0).pixels);
    }
    Outcome Key(const std::string &options) {
        return RunProgram(m_scratch, "key " + m_scratch.Path("in.raw") + " --raw RGB32:96x54 -q " + options);
    }
    Bytes Keyed(const std::string &options) {
        const Outcome run = Key(options + " -o " + m_scratch.Path("out.raw"));
        EXPECT_EQ(run.status, 0) << options << run.error;
        return m_scratch.Read("out.raw");
    }
    std::string Write(const std::string &text) { return m_scratch.Write("hand.xml", {text.begin(), text.end()}); }
    std::string Refusal(const std::string &text) {
        const Outcome run = Key("--key " + Write(text) + " -o " + m_scratch.Path("x.raw"));
        EXPECT_EQ(run.status, kExitFailed) << text;
        EXPECT_NE(run.error.find("hand.xml"), std::string::npos) << run.error;
        return run.error;
    }

    Scratch m_scratch;
};

TEST_F(SavedKey, KeysLikeTheOneThatWasSaved) {
    const std::string saved = m_scratch.Path("key.xml");
    for (const char *key : {"", "-s +7 --spill 60",
                            "-c green -t 60 -s 20 --type RGB -c red --reverse --set nMinTransparent=40 --set nEdgesSmooth=2",
                            "-c green --set nInverseKey=1"}) {
        SCOPED_TRACE(key);
        const Bytes keyed = Keyed(std::string(key) + " --save-key " + saved);
        EXPECT_EQ(m_scratch.Text("key.xml").substr(0, 9), "<m_config");
        EXPECT_EQ(Keyed("--key " + saved), keyed);
        EXPECT_NE(Keyed("-c black -t 0 -s 0"), keyed);
    }
}

TEST_F(SavedKey, CanBeSavedWithoutAnOutput) {
    const std::string found = m_scratch.Path("found.xml");
    EXPECT_EQ(Key("--save-key " + found).status, 0);
    EXPECT_EQ(Keyed("--key " + found), Keyed(""));
    const std::string given = m_scratch.Path("given.xml");
    EXPECT_EQ(RunProgram(m_scratch, "key -c green -t 20 --save-key " + given).status, 0);
    EXPECT_EQ(Keyed("--key " + given), Keyed("-c green -t 20"));
    const std::string copy = m_scratch.Path("copy.xml");
    EXPECT_EQ(RunProgram(m_scratch, "key --key " + given + " --save-key " + copy).status, 0);
    EXPECT_EQ(m_scratch.Text("copy.xml"), m_scratch.Text("given.xml"));
    EXPECT_NE(Key("--save-key " + m_scratch.Path("no/key.xml")).error.find("there is no folder"), std::string::npos);
}

TEST_F(SavedKey, CanBeWrittenByHand) {
    const std::string text =
        "<M_Config type=\"2\" keys=\"1\" transparent.min=\"16\" transparent.max=\"235\">\n"
        "  <key value=\"0x0040B100\" delta=\"0x00181818\" smooth=\"40\"/>\n</M_Config>\n";
    EXPECT_EQ(Keyed("--key " + Write(text)), Keyed("-c 00B140 -t 24 -s 40 --type RGB"));
}

TEST_F(SavedKey, WhatIsNoKeyIsRefusedWithTheReason) {
    EXPECT_NE(Refusal("").find("is empty"), std::string::npos);
    EXPECT_NE(Refusal("just a note\n").find("it is not XML"), std::string::npos);
    EXPECT_NE(Refusal("<html><body/></html>").find("no m_config element"), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='2' keys='0'/>").find("\"keys\" is 1 or more"), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='7' keys='1'><key delta='1'/></m_config>").find("type 7"), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='2' keys='1'><key value='5'/></m_config>").find("\"delta\""), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='2' keys='1'><adjust/><key delta='1'/></m_config>").find("come first"),
              std::string::npos);
}

}    // namespace
