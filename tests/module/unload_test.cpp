// What keeps the library loaded: every object of it by itself, however few the references are that a host still has.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/module/held.h"
#include "tests/module/keyed.h"
#include "tests/support/outer.h"
#include "zchromakey/zchromakey.h"

namespace {

using zck::test::Held;
using zck::test::Outer;

class Unload : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(DllCanUnloadNow(), S_OK); }
    void TearDown() override { EXPECT_EQ(DllCanUnloadNow(), S_OK); }

    template <class T>
    static void Make(REFCLSID clsid, REFIID iid, Held<T> &out) {
        Held<IClassFactory> factory;
        ASSERT_EQ(DllGetClassObject(clsid, IID_IClassFactory, factory.Out()), S_OK);
        ASSERT_EQ(factory->CreateInstance(nullptr, iid, out.Out()), S_OK);
    }

    static void MakeFrame(Held<IZFrame> &out) {
        Held<IZFrames> frames;
        ASSERT_EQ(ZFramesCreate(IID_IZFrames, frames.Out()), S_OK);
        Z_VID_PROPS props = {};
        props.fccType = eZFCC_ARGB32;
        props.nWidth = 16;
        props.nHeight = -8;
        props.nRowBytes = 64;
        const std::vector<uint32_t> pixels(16 * 8, 0xFF102030);
        ASSERT_EQ(frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(pixels.data()), &out.p, nullptr), S_OK);
    }
};

TEST_F(Unload, AClassFactoryKeepsTheLibrary) {
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZKey, IID_IClassFactory, factory.Out()), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
}

TEST_F(Unload, APluginKeepsTheLibrary) {
    Held<IZPlugin> plugin;
    Make(CLSID_ZChromaKey, IID_IZPlugin, plugin);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
}

TEST_F(Unload, AKeyObjectKeepsTheLibrary) {
    Held<IZKey> key;
    Make(CLSID_ZKey, IID_IZKey, key);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
}

TEST_F(Unload, AFrameFactoryKeepsTheLibrary) {
    Held<IZFrames> frames;
    ASSERT_EQ(ZFramesCreate(IID_IZFrames, frames.Out()), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
}

TEST_F(Unload, AFrameAndItsClonesKeepTheLibrary) {
    Held<IZFrame> frame;
    MakeFrame(frame);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    Held<IZFrame> clone;
    ASSERT_EQ(frame->FrameClone(&clone.p, eZFC_Reference, eZFCC_Default), S_OK);
    frame.Drop();
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    int32_t size = 0;
    int64_t address = 0;
    ASSERT_EQ(clone->FrameVideoGetBytes(&size, &address), S_OK);
    ASSERT_EQ(size, 16 * 8 * 4);
    EXPECT_EQ(*reinterpret_cast<const uint32_t *>(address), 0xFF102030u) << "the pixels of a frame that the host has let go";
}

TEST_F(Unload, AKeyedFrameOutlivesItsPlugin) {
    Held<IZFrame> keyed;
    {
        Held<IZPlugin> plugin;
        Make(CLSID_ZChromaKey, IID_IZPlugin, plugin);
        Held<IZFrame> frame;
        MakeFrame(frame);
        ASSERT_EQ(plugin->OnMediaReceive(0, nullptr, frame.p, &keyed.p), S_FALSE);
        ASSERT_EQ(zck::test::ReceiveKeyed(plugin.p, frame.p, &keyed.p), S_OK);
    }
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    Z_AV_PROPS props = {};
    EXPECT_EQ(keyed->FrameAVPropsGet(&props), S_OK);
    EXPECT_EQ(props.vidProps.fccType, eZFCC_ARGB32);
}

TEST_F(Unload, AFrameThatTheOutputThreadHoldsGoesWithThePlugin) {
    Held<IZPlugin> plugin;
    Make(CLSID_ZChromaKey, IID_IZPlugin, plugin);
    Held<IZFrame> frame;
    MakeFrame(frame);
    IZFrame *none = nullptr;
    ASSERT_EQ(plugin->OnMediaReceive(0, nullptr, frame.p, &none), S_FALSE);
    EXPECT_EQ(none, nullptr);
    // Pending, finished and last frame: the check at the end finds what is left of them.
}

TEST_F(Unload, ALockCountsByItself) {
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
    ASSERT_EQ(factory->LockServer(1), S_OK);
    ASSERT_EQ(factory->LockServer(1), S_OK);
    factory.Drop();
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
    ASSERT_EQ(factory->LockServer(0), S_OK);
    factory.Drop();
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "one of two locks is left";
    ASSERT_EQ(DllGetClassObject(CLSID_ZKey, IID_IClassFactory, factory.Out()), S_OK);
    ASSERT_EQ(factory->LockServer(0), S_OK);
}

TEST_F(Unload, AKeyObjectMayBeAPartOfAnotherObject) {
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZKey, IID_IClassFactory, factory.Out()), S_OK);
    Outer outer;
    void *out = &outer;
    EXPECT_EQ(factory->CreateInstance(&outer, IID_IZKey, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
    ASSERT_EQ(factory->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void **>(&outer.inner)), S_OK);
    for (const IID *iid : {&IID_IZKey, &IID_IZProps, &IID_IZPersist}) {
        Held<IUnknown> view, identity;
        ASSERT_EQ(outer.QueryInterface(*iid, view.Out()), S_OK);
        EXPECT_EQ(outer.count, 2u);
        ASSERT_EQ(view->QueryInterface(IID_IUnknown, identity.Out()), S_OK);
        EXPECT_EQ(identity.p, &outer);
    }
    EXPECT_EQ(outer.count, 1u);
    outer.inner->Release();
}

}    // namespace
