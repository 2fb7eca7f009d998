// Linked into a test program, keeps the user's stored settings out of all its tests.
#include <gtest/gtest.h>

#include <memory>

#include "tests/support/settings_place.h"

namespace zck::test {
namespace {

class OwnSettings : public testing::Environment {
public:
    void SetUp() override { m_place = std::make_unique<SettingsPlace>(TextView()); }
    void TearDown() override { m_place.reset(); }

private:
    std::unique_ptr<SettingsPlace> m_place;
};

[[maybe_unused]] const testing::Environment *const s_environment = testing::AddGlobalTestEnvironment(new OwnSettings);

}    // namespace
}    // namespace zck::test
