// What registering writes, and what unregistering leaves.
#include <windows.h>
#include <olectl.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/server/registry_sandbox.h"
#include "tests/server/registry_text.h"

namespace quorvane {
namespace {

constexpr const char* kServerKey = "CLSID\\{DD535C98-F63E-476F-BF8B-E508C7DAD21F}\\InprocServer32";

class RegistrationTest : public testing::Test {
protected:
    void ExpectRegistered() {
        const auto module = ReadValue(kServerKey, "");
        ASSERT_TRUE(module);
        EXPECT_TRUE(std::filesystem::path(*module).is_absolute()) << *module;
        EXPECT_TRUE(std::filesystem::exists(*module)) << *module;
        const auto lines = ReviewedRegistry(*module);
        ASSERT_FALSE(lines.empty());
        for (const RegistryLine& line : lines) {
            EXPECT_TRUE(KeyExists(line.key)) << line.key;
            EXPECT_EQ(ReadValue(line.key, line.name), line.data) << TextOf(line);
        }
    }

    RegistrySandbox sandbox_;
};

TEST_F(RegistrationTest, WritesEveryKeyAndValue) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ExpectRegistered();
}

TEST_F(RegistrationTest, MayBeRepeated) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ExpectRegistered();
}

TEST_F(RegistrationTest, RemovesItsClassesWholeAndKeepsWhatIsShared) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    const auto lines = ReviewedRegistry("");
    HKEY below = nullptr;  // as a tool of the user's may have added
    ASSERT_EQ(
        RegCreateKeyExW(HKEY_CLASSES_ROOT,
                        OLESTR("CLSID\\{DD535C98-F63E-476F-BF8B-E508C7DAD21F}\\Notes\\Own"), 0,
                        nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &below, nullptr),
        ERROR_SUCCESS);
    RegCloseKey(below);

    ASSERT_EQ(DllUnregisterServer(), S_OK);
    for (const RegistryLine& line : lines) {
        EXPECT_EQ(KeyExists(line.key), line.key.starts_with("AppID\\")) << line.key;
    }
    EXPECT_TRUE(KeyExists("AppID"));
    EXPECT_TRUE(KeyExists("CLSID"));
}

TEST_F(RegistrationTest, UnregistersWhatWasNeverRegistered) {
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    ASSERT_EQ(DllRegisterServer(), S_OK);
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(DllUnregisterServer(), S_OK);
}

}  // namespace
}  // namespace quorvane
