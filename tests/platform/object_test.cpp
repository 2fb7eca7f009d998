#include "platform/object.h"

#include <gtest/gtest.h>

#include "platform/com_ptr.h"

struct IZFirst : IUnknown {
    virtual int32_t Z_STDCALL First() = 0;
};
Z_INTERFACE_ID(IZFirst, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0xF1);
struct IZSecondBase : IUnknown {
    virtual int32_t Z_STDCALL Base() = 0;
};
Z_INTERFACE_ID(IZSecondBase, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0xF2);
struct IZSecond : IZSecondBase {
    virtual int32_t Z_STDCALL Second() = 0;
};
Z_INTERFACE_ID(IZSecond, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0xF3);
struct IZOther : IUnknown {};
Z_INTERFACE_ID(IZOther, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0xF4);

namespace zck {
namespace {

struct Events {
    int constructed = 0;
    int finalReleased = 0;
    int destroyed = 0;
    HRESULT second = S_OK;
    bool countInRelease = false;
};

class CoSample : public CoObject<IZFirst, IZSecond> {
public:
    explicit CoSample(Events *events = nullptr) : m_events(events) {
        if (m_events != nullptr) ++m_events->constructed;
    }
    ~CoSample() override {
        if (m_events != nullptr) ++m_events->destroyed;
    }
    HRESULT FinalConstruct() override {
        ComPtr<IUnknown> self(ControllingUnknown());
        return m_events != nullptr ? m_events->second : S_OK;
    }
    void FinalRelease() noexcept override {
        if (m_events == nullptr) return;
        ++m_events->finalReleased;
        if (m_events->countInRelease) ComPtr<IZFirst> again(this);
    }
    int32_t Z_STDCALL First() override { return 1; }
    int32_t Z_STDCALL Base() override { return 2; }
    int32_t Z_STDCALL Second() override { return 3; }

protected:
    void *InterfaceFind(REFIID riid) noexcept override {
        return riid == ZIidOf<IZSecondBase>() ? static_cast<IZSecondBase *>(this) : nullptr;
    }

private:
    Events *m_events;
};

class CoThrowing : public CoObject<IZFirst> {
public:
    CoThrowing() { throw std::bad_alloc(); }
    int32_t Z_STDCALL First() override { return 0; }
};

/// An outer object that brings `CoSample`'s interfaces as its own.
class CoOuter : public CoObject<IZOther> {
public:
    HRESULT FinalConstruct() override { return CreateObject<CoSample>(ControllingUnknown(), IID_IUnknown, m_inner.PutVoid()); }
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override { return CoObject::QueryInterface(riid, ppv); }

protected:
    void *InterfaceFind(REFIID riid) noexcept override {
        void *found = nullptr;
        if (FAILED(m_inner->QueryInterface(riid, &found))) return nullptr;
        // The query counted the outer object, and the caller of this will do so too.
        ControllingUnknown()->Release();
        return found;
    }

private:
    ComPtr<IUnknown> m_inner;
};

ULONG RefsOf(IUnknown *object) {
    object->AddRef();
    return object->Release();
}

class ObjectTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(ModuleCount::Get(), 0) << "an object is left"; }
};

TEST_F(ObjectTest, AnswersEveryInterfaceFromEveryOther) {
    const IID *all[] = {&IID_IUnknown, &IID_IZFirst, &IID_IZSecond, &IID_IZSecondBase};
    ComPtr<IUnknown> object;
    ASSERT_EQ(CreateObject<CoSample>(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
    for (const IID *from : all) {
        ComPtr<IUnknown> start;
        ASSERT_EQ(object->QueryInterface(*from, start.PutVoid()), S_OK);
        for (const IID *to : all) {
            ComPtr<IUnknown> end;
            ASSERT_EQ(start->QueryInterface(*to, end.PutVoid()), S_OK);
            EXPECT_EQ(QueryFor<IUnknown>(end.get()), object);
        }
        ComPtr<IUnknown> none(object);
        EXPECT_EQ(start->QueryInterface(IID_IZOther, none.PutVoid()), E_NOINTERFACE);
        EXPECT_FALSE(none);
        EXPECT_EQ(start->QueryInterface(*from, nullptr), E_POINTER);
    }
    EXPECT_EQ(RefsOf(object.get()), 1U);
    EXPECT_EQ(QueryFor<IZFirst>(object.get())->First(), 1);
    EXPECT_EQ(QueryFor<IZSecondBase>(object.get())->Base(), 2);
    EXPECT_EQ(QueryFor<IZSecond>(object.get())->Second(), 3);
}

TEST_F(ObjectTest, LivesFromTheFirstReferenceToTheLast) {
    Events events;
    events.countInRelease = true;
    ComPtr<IZFirst> first;
    ASSERT_EQ(CreateObject<CoSample>(nullptr, IID_IZFirst, first.PutVoid(), &events), S_OK);
    EXPECT_EQ(ModuleCount::Get(), 1);
    ComPtr<IZSecond> second;
    EXPECT_EQ(first.As(second), S_OK);
    first.Reset();
    EXPECT_EQ(events.destroyed, 0);
    second.Reset();
    EXPECT_EQ(events.finalReleased, 1);
    EXPECT_EQ(events.destroyed, 1);
}

TEST_F(ObjectTest, FailedSecondStepDestroysTheObject) {
    Events events;
    events.second = kVfwEWrongState;
    void *out = &events;
    EXPECT_EQ(CreateObject<CoSample>(nullptr, IID_IZFirst, &out, &events), kVfwEWrongState);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(events.constructed, 1);
    EXPECT_EQ(events.destroyed, 1);
}

TEST_F(ObjectTest, MissingInterfaceDestroysTheObject) {
    Events events;
    void *out = &events;
    EXPECT_EQ(CreateObject<CoSample>(nullptr, IID_IZOther, &out, &events), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(events.destroyed, 1);
    EXPECT_EQ(CreateObject<CoSample>(nullptr, IID_IZFirst, nullptr), E_POINTER);
}

TEST_F(ObjectTest, ConstructorThatFindsNoMemoryIsAStatus) {
    void *out = nullptr;
    EXPECT_EQ(CreateObject<CoThrowing>(nullptr, IID_IUnknown, &out), E_OUTOFMEMORY);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ObjectTest, AggregatedInterfacesBelongToTheOuterObject) {
    ComPtr<IZOther> outer;
    ASSERT_EQ(CreateObject<CoOuter>(nullptr, IID_IZOther, outer.PutVoid()), S_OK);
    EXPECT_EQ(RefsOf(outer.get()), 1U) << "the part does not count the whole";
    ComPtr<IZFirst> first = QueryFor<IZFirst>(outer.get());
    ASSERT_TRUE(first);
    EXPECT_EQ(RefsOf(outer.get()), 2U);
    EXPECT_EQ(QueryFor<IUnknown>(first.get()), QueryFor<IUnknown>(outer.get()));
    EXPECT_EQ(QueryFor<IZOther>(first.get()), outer);
    outer.Reset();
    EXPECT_EQ(first->First(), 1);
}

TEST_F(ObjectTest, AggregationIsAskedForItsUnknownOnly) {
    ComPtr<IUnknown> outer;
    ASSERT_EQ(CreateObject<CoSample>(nullptr, IID_IUnknown, outer.PutVoid()), S_OK);
    void *out = nullptr;
    EXPECT_EQ(CreateObject<CoSample>(outer.get(), IID_IZFirst, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ObjectTest, FactoryMakesObjectsAndLocksTheModule) {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(CreateObject<CoClassFactory<CoSample>>(nullptr, IID_IClassFactory, factory.PutVoid()), S_OK);
    EXPECT_EQ(ModuleCount::Get(), 1);
    EXPECT_EQ(factory->LockServer(1), S_OK);
    EXPECT_EQ(ModuleCount::Get(), 2);
    EXPECT_EQ(factory->LockServer(0), S_OK);
    ComPtr<IZSecond> object;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IZSecond, object.PutVoid()), S_OK);
    EXPECT_EQ(object->Second(), 3);
    ComPtr<IZSecond> part;
    EXPECT_EQ(factory->CreateInstance(object.get(), IID_IZSecond, part.PutVoid()), CLASS_E_NOAGGREGATION);
}

}    // namespace
}    // namespace zck
