#include <cstdio>
#include <cstring>
#include <map>

#include "tests/support/child_process.h"

namespace zck::test {
namespace {

std::map<std::string, ChildRole::Body> &Roles() {
    static std::map<std::string, ChildRole::Body> roles;
    return roles;
}

}    // namespace

ChildRole::ChildRole(const char *name, Body body) { Roles()[name] = body; }

bool RunChildRole(int argc, char **argv, int *exitCode) {
    if (argc < 3 || std::strcmp(argv[1], "--child") != 0) return false;
    const auto role = Roles().find(argv[2]);
    if (role == Roles().end()) {
        std::fprintf(stderr, "no such role: %s\n", argv[2]);
        *exitCode = 127;
        return true;
    }
    *exitCode = role->second(std::vector<std::string>(argv + 3, argv + argc));
    return true;
}

}    // namespace zck::test
