#include "platform/thread.h"

#include "platform/clock.h"
#include "platform/status.h"

namespace zck {
namespace {

struct EntryCall {
    SystemThread::Entry entry;
    void *argument;
};

DWORD WINAPI ThreadMain(void *argument) {
    const std::unique_ptr<EntryCall> call(static_cast<EntryCall *>(argument));
    const HRESULT hr = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    call->entry(call->argument);
    if (SUCCEEDED(hr)) CoUninitialize();
    return 0;
}

void ServeMessages() noexcept {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

class Win32Thread final : public SystemThread {
public:
    Win32Thread(HANDLE handle, DWORD id) noexcept : m_handle(handle), m_id(id) {}
    ~Win32Thread() override { CloseHandle(m_handle); }

    bool WaitEnd(uint32_t ms, bool pumpMessages) noexcept override {
        if (!pumpMessages) return WaitForSingleObject(m_handle, ms) == WAIT_OBJECT_0;
        const uint32_t start = TimerMs();
        for (;;) {
            const uint32_t passed = TimerMs() - start;
            const uint32_t left = ms == kInfinite ? kInfinite : passed < ms ? ms - passed : 0;
            const DWORD result = MsgWaitForMultipleObjects(1, &m_handle, FALSE, left, QS_ALLINPUT);
            if (result != WAIT_OBJECT_0 + 1) return result == WAIT_OBJECT_0;
            ServeMessages();
        }
    }

    void Terminate() noexcept override {
        TerminateThread(m_handle, static_cast<DWORD>(-1));
        // It may still run for a moment on another processor.
        WaitForSingleObject(m_handle, 1000);
    }

    uint32_t Id() const noexcept override { return m_id; }

private:
    HANDLE m_handle;
    DWORD m_id;
};

}    // namespace

HRESULT SystemThread::Start(Entry entry, void *argument, std::unique_ptr<SystemThread> &out) noexcept {
    return Guarded([&] {
        auto call = std::make_unique<EntryCall>(EntryCall{entry, argument});
        DWORD id = 0;
        const HANDLE handle = CreateThread(nullptr, 0, ThreadMain, call.get(), CREATE_SUSPENDED, &id);
        if (handle == nullptr) return LastSystemError(E_FAIL);
        try {
            out = std::make_unique<Win32Thread>(handle, id);
        } catch (...) {
            TerminateThread(handle, 0);
            CloseHandle(handle);
            throw;
        }
        static_cast<void>(call.release());    // the thread has it now
        ResumeThread(handle);
        return S_OK;
    });
}

}    // namespace zck
