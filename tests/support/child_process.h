// A second process for tests: the test program itself, started again in a role that a test file has registered.
//
//     int Echo(const std::vector<std::string> &args) { ... }      // runs in the child; std::cin and std::cout reach the parent
//     const ChildRole kEcho("echo", Echo);
//
//     ChildProcess child;
//     ASSERT_TRUE(child.Start("echo", {"hello"}));
//
// A program that uses this links `zck_test_support`, which brings the main function along.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zck::test {

/// Makes a function known by name; one for each role, as a static object.
class ChildRole {
public:
    using Body = int (*)(const std::vector<std::string> &args);
    ChildRole(const char *name, Body body);
};

class ChildProcess {
public:
    ChildProcess();
    /// Kills a child that still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// Arguments must not contain quotes.
    bool Start(const std::string &role, const std::vector<std::string> &args = {});
    /// Writes a line to the child's input. False when it is gone.
    bool Send(const std::string &line);
    /// The next line of the child's output, without its end; empty when the output has ended.
    std::string ReadLine();
    /// Closes the child's input and waits for its end. The exit code of its role; -1 for a child that was killed.
    int Wait();
    /// Ends the child between two instructions and waits for it.
    void Kill();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// For the main function: runs the role that the command line names. False when it names none.
bool RunChildRole(int argc, char **argv, int *exitCode);

}    // namespace zck::test
