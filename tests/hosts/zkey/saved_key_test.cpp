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

TEST_F(SavedKey, WhatIsDoubtfulInItIsSaid) {
    const auto noted = [&](const std::string &root, const std::string &key) {
        const std::string text =
            "<?xml version='1.0'?><!-- <note> --><m_config " + root + ">\n<key " + key + "/>\n<!-- > --></m_config>";
        const Outcome run = RunProgram(m_scratch, "key --key " + Write(text) + " --save-key " + m_scratch.Path("copy.xml"));
        EXPECT_EQ(run.status, 0) << text << run.error;
        return run.error;
    };
    const std::string root = "type='4' keys='1'";
    const std::string key = "value='0x004C437B' delta='0x00181830' ";
    EXPECT_EQ(noted(root + " color_cancel=\"True\" transparent.min='0' transparent.max='255'", key + "Smooth = '255'"), "");
    const struct {
        std::string root;
        std::string key;
        const char *says;
    } cases[] = {{root, key + "smoth='30'", "hand.xml: key 1: unknown attribute \"smoth\""},
                 {root + " inverted='1'", key, "m_config: unknown attribute \"inverted\""},
                 {root, "value='0x0099ZZ92' delta='1'", "key 1: value=\"0x0099ZZ92\" is no number as 0x"},
                 {root, "value='#2998B0' delta='1'", "value=\"#2998B0\" is no number"},
                 {root, "value='002998' delta='1'", "value=\"002998\" is no number"},
                 {root, key + "smooth='0x20'", "smooth=\"0x20\" is no whole decimal number"},
                 {root, key + "smooth='300'", "smooth=\"300\" is not 0 to 255"},
                 {root, key + "alpha='-1'", "alpha=\"-1\" is not 0 to 255"},
                 {root + " color_cancel='maybe'", key, "color_cancel=\"maybe\" is neither true nor false"},
                 {root + " transparent.max='256'", key, "transparent.max=\"256\" is not 0 to 255"},
                 {root + " transparent.min='200' transparent.max='100'", key, "\"200\" is above transparent.max=\"100\""},
                 {root, "delta='1'", "key 1 has no \"value\""},
                 {root, key + "/><key value='1'", "key 2 has no \"delta\""},
                 {root, key + "/><key " + key, "says keys=\"1\", but has 2 key elements; the rest is left out"},
                 {root, key + "/><kye " + key, "unknown element \"kye\""},
                 {root, key + "/><adjust smooth='much'", "adjust: smooth=\"much\" is no number"}};
    for (const auto &c : cases) {
        const std::string said = noted(c.root, c.key);
        EXPECT_NE(said.find(c.says), std::string::npos) << c.says << "\n" << said;
    }
    // What the library writes itself is beyond doubt, in any encoding of it.
    EXPECT_EQ(Key("--save-key " + m_scratch.Path("key.xml")).status, 0);
    const std::string saved = m_scratch.Text("key.xml");
    EXPECT_EQ(RunProgram(m_scratch, "key --key " + Write(saved) + " --save-key " + m_scratch.Path("copy.xml")).error, "");
    std::string wide = "\xFF\xFE";
    for (const char c : saved) wide += {c, '\0'};
    EXPECT_EQ(RunProgram(m_scratch, "key --key " + Write(wide) + " --save-key " + m_scratch.Path("copy.xml")).error, "");
    EXPECT_EQ(m_scratch.Text("copy.xml"), saved);
    EXPECT_NE(Refusal(wide.substr(0, wide.size() / 2)).find("is cut"), std::string::npos);
}

TEST_F(SavedKey, APartOfAKeyIsRefused) {
    ASSERT_EQ(Key("--save-key " + m_scratch.Path("key.xml")).status, 0);
    const std::string saved = m_scratch.Text("key.xml");
    const std::size_t end = saved.rfind("</m_config>");
    for (const std::size_t bytes : {end, end + 5, end / 2, saved.find("/>") + 2, saved.find(" transparent")}) {
        EXPECT_NE(Refusal(saved.substr(0, bytes)).find("the file is cut"), std::string::npos) << bytes;
    }
    EXPECT_NE(Refusal("<m_config type='2' keys='2'><key delta='1'/></m_config>").find("keys=\"2\", but has 1 key"),
              std::string::npos);
    EXPECT_NE(Refusal("<m_config type='2' keys='1'>new<key delta='1'/></m_config>").find("come first"), std::string::npos);
}

TEST_F(SavedKey, WhatIsNoKeyIsRefusedWithTheReason) {
    EXPECT_NE(Refusal("").find("is empty"), std::string::npos);
    EXPECT_NE(Refusal("just a note\n").find("it is not XML"), std::string::npos);
    EXPECT_NE(Refusal("<html><body/></html>").find("no m_config element"), std::string::npos);
    EXPECT_NE(Refusal("<config type='2' keys='1'><key delta='1'/></config>").find("no m_config element"), std::string::npos);
    EXPECT_NE(Refusal(std::string("\0\0\0 ftyp <x>\x81", 13)).find("it is not XML"), std::string::npos);
    const Outcome folder = Key("--key " + m_scratch.Path("") + " -o " + m_scratch.Path("x.raw"));
    EXPECT_EQ(folder.status, kExitFailed);
    EXPECT_NE(folder.error.find("it is a folder"), std::string::npos) << folder.error;
    EXPECT_NE(Refusal("<m_config type='2' keys='0'/>").find("\"keys\" is 1 or more"), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='7' keys='1'><key delta='1'/></m_config>").find("type 7"), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='2' keys='1'><key value='5'/></m_config>").find("\"delta\""), std::string::npos);
    EXPECT_NE(Refusal("<m_config type='2' keys='1'><adjust/><key delta='1'/></m_config>").find("come first"),
              std::string::npos);
}

}    // namespace
