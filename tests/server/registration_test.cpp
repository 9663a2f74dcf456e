// What registering writes, and what unregistering leaves.
#include <windows.h>
#include <olectl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "automation/wide_string.h"
#include "tests/server/library_copy.h"
#include "tests/server/registry_sandbox.h"
#include "tests/server/registry_text.h"
#include "tests/support/scratch_folder.h"

namespace quorvane {
namespace {

constexpr const char* kServerKey = "CLSID\\{DD535C98-F63E-476F-BF8B-E508C7DAD21F}\\InprocServer32";
constexpr const char* kToolboxKey =
    "CLSID\\{DD535C98-F63E-476F-BF8B-E508C7DAD21F}\\ToolboxBitmap32";
constexpr const char* kLibraryKey =
    "TypeLib\\{2C77ADD0-DAF1-477C-BBAD-97775DD7A5BC}\\1.0\\409\\win64";

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

    static void MakeKey(const std::string& name) {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, WidenBytes(name).c_str(), 0, nullptr,
                                  REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    // As installers write paths.
    static void SetExpandable(const std::string& name, const WideString& path) {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, WidenBytes(name).c_str(), 0,
                                KEY_READ | KEY_WRITE, &key),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegSetValueExW(key, nullptr, 0, REG_EXPAND_SZ,
                                 reinterpret_cast<const BYTE*>(path.c_str()),
                                 static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR))),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    RegistrySandbox sandbox_;
};

TEST_F(RegistrationTest, WritesEveryKeyAndValue) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ExpectRegistered();
}

// The one that is loaded from the place with an ordinary name.
std::filesystem::path LibraryPath() {
    EXPECT_EQ(DllRegisterServer(), S_OK);
    const std::filesystem::path path = ReadValue(kServerKey, "").value_or("");
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    return path;
}

std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

TEST_F(RegistrationTest, WorksFromAnyPlace) {
    const ScratchFolder scratch;
    const LibraryCopy copy(LibraryPath(),
                           scratch.path() / u8"Käse & Brot, %PATH%" / u8"почта 邮件");
    ASSERT_EQ(copy.Call("DllRegisterServer"), S_OK);
    const std::string module = Utf8(copy.path());
    EXPECT_EQ(ReadValue(kServerKey, ""), module);
    EXPECT_EQ(ReadValue(kToolboxKey, ""), module + ", 201");
    EXPECT_THAT(ReadValue(kLibraryKey, ""), testing::Optional(testing::EndsWith(module)));
    EXPECT_EQ(copy.Call("DllUnregisterServer"), S_OK);
    EXPECT_FALSE(KeyExists(kServerKey));
}

TEST_F(RegistrationTest, LeavesTheLocaleOfTheThreadAlone) {
    constexpr LCID kGerman = 0x407;
    const LCID before = GetThreadLocale();
    SetThreadLocale(kGerman);
    EXPECT_EQ(DllRegisterServer(), S_OK);
    EXPECT_EQ(GetThreadLocale(), kGerman);
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(GetThreadLocale(), kGerman);
    SetThreadLocale(before);
}

TEST_F(RegistrationTest, TakesBackWhatItHasWrittenWhenAWriteFails) {
    const ScratchFolder scratch;
    const std::filesystem::path folder =
        scratch.path() / std::string(200, 'x') / std::string(30, 'y');
    const LibraryCopy copy(LibraryPath(), folder);
    for (const char* root : {"AppID", "CLSID", "Interface", "TypeLib"}) MakeKey(root);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, OLESTR("AppID\\Quorvane.DLL"));
    MakeKey("AppID\\Quorvane.DLL");  // without its value
    for (const bool isRegistered : {false, true}) {
        SCOPED_TRACE(isRegistered ? "registered from another place" : "not registered");
        if (isRegistered) {
            ASSERT_EQ(DllRegisterServer(), S_OK);
            SetExpandable(kServerKey, OLESTR("%CommonProgramFiles%\\Quorvane.dll"));
        }
        const std::string before = sandbox_.Contents();
        int failures = 0;
        HRESULT hr = E_FAIL;
        while (FAILED(hr) && sandbox_.Hinder(failures)) {
            hr = copy.Call("DllRegisterServer");
            sandbox_.Unhinder();
            if (SUCCEEDED(hr)) break;
            EXPECT_EQ(sandbox_.Contents(), before) << "step " << failures;
            ++failures;
        }
        if (!isRegistered) {
            EXPECT_GE(failures, 4);
        }
    }
}

TEST_F(RegistrationTest, MayBeRepeated) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ExpectRegistered();
}

TEST_F(RegistrationTest, RemovesItsClassesWholeAndKeepsWhatIsShared) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    const auto lines = ReviewedRegistry("");
    // As a tool of the user's may have added.
    MakeKey("CLSID\\{DD535C98-F63E-476F-BF8B-E508C7DAD21F}\\Notes\\Own");

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
