#include "tests/support/child_process.h"

#include <windows.h>

namespace zck::test {

struct ChildProcess::State {
    HANDLE process = nullptr;
    HANDLE input = nullptr;     // the end that we write
    HANDLE output = nullptr;    // the end that we read
    bool killed = false;

    int WaitEnd() {
        if (process == nullptr) return -1;
        WaitForSingleObject(process, INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(process, &code);
        Close(process);
        return killed ? -1 : static_cast<int>(code);
    }
    static void Close(HANDLE &handle) {
        if (handle != nullptr) CloseHandle(handle);
        handle = nullptr;
    }
};

namespace {

// A pipe of which the child inherits one end.
bool MakePipe(HANDLE *readEnd, HANDLE *writeEnd, bool childReads) {
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    if (!CreatePipe(readEnd, writeEnd, &inherited, 0)) return false;
    SetHandleInformation(childReads ? *writeEnd : *readEnd, HANDLE_FLAG_INHERIT, 0);
    return true;
}

std::string OwnPath() {
    char path[1024];
    const DWORD n = GetModuleFileNameA(nullptr, path, sizeof(path));
    return std::string(path, n);
}

}    // namespace

ChildProcess::ChildProcess() : m_state(std::make_unique<State>()) {}

ChildProcess::~ChildProcess() {
    Kill();
    State::Close(m_state->output);
}

bool ChildProcess::Start(const std::string &role, const std::vector<std::string> &args) {
    std::string line = "\"" + OwnPath() + "\" --child \"" + role + "\"";
    for (const std::string &arg : args) line += " \"" + arg + "\"";

    HANDLE childIn = nullptr;
    HANDLE childOut = nullptr;
    if (!MakePipe(&childIn, &m_state->input, true)) return false;
    if (!MakePipe(&m_state->output, &childOut, false)) {
        State::Close(childIn);
        return false;
    }
    STARTUPINFOA start = {};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = childIn;
    start.hStdOutput = childOut;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION info = {};
    const bool started = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &info);
    State::Close(childIn);
    State::Close(childOut);
    if (!started) return false;
    CloseHandle(info.hThread);
    m_state->process = info.hProcess;
    m_state->killed = false;
    return true;
}

bool ChildProcess::Send(const std::string &line) {
    const std::string bytes = line + "\n";
    DWORD done = 0;
    return WriteFile(m_state->input, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) && done == bytes.size();
}

std::string ChildProcess::ReadLine() {
    std::string line;
    for (;;) {
        char c = 0;
        DWORD n = 0;
        if (!ReadFile(m_state->output, &c, 1, &n, nullptr) || n == 0 || c == '\n') return line;
        if (c != '\r') line += c;
    }
}

int ChildProcess::Wait() {
    State::Close(m_state->input);
    return m_state->WaitEnd();
}

void ChildProcess::Kill() {
    if (m_state->process != nullptr) m_state->killed = TerminateProcess(m_state->process, 1) != 0;
    Wait();
}

}    // namespace zck::test
