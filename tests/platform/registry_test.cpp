// Purpose: what is registered is found again, by names in any case, and goes as a whole.
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/platform/registry_home.h"

namespace {

using Wide = std::basic_string<WCHAR>;

constexpr const WCHAR* kRoot = OLESTR("Quorvane.PlatformTest");

class RegistryTest : public testing::Test {
protected:
    void SetUp() override { RegDeleteTreeW(HKEY_CLASSES_ROOT, kRoot); }
    void TearDown() override { RegDeleteTreeW(HKEY_CLASSES_ROOT, kRoot); }

    static HKEY Create(const Wide& path) {
        HKEY key = nullptr;
        EXPECT_EQ(
            RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_READ | KEY_WRITE, nullptr, &key, nullptr),
            ERROR_SUCCESS);
        return key;
    }
    static LSTATUS Open(const Wide& path, HKEY& key) {
        return RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key);
    }
    static LSTATUS Set(HKEY key, LPCWSTR name, const Wide& text, DWORD type = REG_SZ) {
        return RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    }
    static Wide Get(HKEY key, LPCWSTR name, DWORD* type = nullptr) {
        WCHAR text[260] = {};
        DWORD size = sizeof text;
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, type, reinterpret_cast<BYTE*>(text), &size),
                  ERROR_SUCCESS);
        return text;
    }

    const RegistryHome home_;
    const Wide root_ = kRoot;
};

TEST_F(RegistryTest, FindsWhatWasStored) {
    const HKEY key = Create(root_ + OLESTR("\\Sub\\Deep"));
    EXPECT_EQ(Set(key, nullptr, OLESTR("default")), ERROR_SUCCESS);
    EXPECT_EQ(Set(key, OLESTR("Name"), OLESTR("\u043F\u0438\u0441\u044C\u043C\u043E\t\\%")),
              ERROR_SUCCESS);
    EXPECT_EQ(Set(key, OLESTR("Expand"), OLESTR("%PATH%"), REG_EXPAND_SZ), ERROR_SUCCESS);
    RegCloseKey(key);

    HKEY again = nullptr;
    ASSERT_EQ(Open(OLESTR("QUORVANE.platformtest\\sub\\DEEP"), again), ERROR_SUCCESS);
    DWORD type = 0;
    EXPECT_EQ(Get(again, OLESTR(""), &type), OLESTR("default"));
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(Get(again, OLESTR("NAME")), OLESTR("\u043F\u0438\u0441\u044C\u043C\u043E\t\\%"));
    EXPECT_EQ(Get(again, OLESTR("expand"), &type), OLESTR("%PATH%"));
    EXPECT_EQ(type, static_cast<DWORD>(REG_EXPAND_SZ));
    RegCloseKey(again);
}

TEST_F(RegistryTest, OpensOnlyWhatThereIs) {
    RegCloseKey(Create(root_ + OLESTR("\\A\\B")));
    HKEY key = nullptr;
    ASSERT_EQ(Open(root_ + OLESTR("\\A"), key), ERROR_SUCCESS);
    HKEY below = nullptr;
    EXPECT_EQ(RegOpenKeyExW(key, OLESTR("B"), 0, KEY_READ, &below), ERROR_SUCCESS);
    RegCloseKey(below);
    EXPECT_EQ(RegOpenKeyExW(key, OLESTR("C"), 0, KEY_READ, &below), ERROR_FILE_NOT_FOUND);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, OLESTR("none"), nullptr, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
    RegCloseKey(key);
}

TEST_F(RegistryTest, TellsNewKeysFromOldOnes) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    for (const DWORD expected : {REG_CREATED_NEW_KEY, REG_OPENED_EXISTING_KEY}) {
        ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, kRoot, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_WRITE, nullptr, &key, &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, expected);
        RegCloseKey(key);
    }
}

TEST_F(RegistryTest, TellsTheSizeThatAValueNeeds) {
    const HKEY key = Create(root_);
    ASSERT_EQ(Set(key, nullptr, OLESTR("four")), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 10u);
    WCHAR small[2] = {'#', '#'};
    size = sizeof small;
    EXPECT_EQ(
        RegQueryValueExW(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(small), &size),
        ERROR_MORE_DATA);
    EXPECT_EQ(size, 10u);
    RegCloseKey(key);
}

TEST_F(RegistryTest, RemovesATreeAndNothingBesideIt) {
    RegCloseKey(Create(root_ + OLESTR("\\Tree\\Branch\\Leaf")));
    RegCloseKey(Create(root_ + OLESTR("\\Treetop")));
    EXPECT_EQ(RegDeleteTreeW(HKEY_CLASSES_ROOT, (root_ + OLESTR("\\tree")).c_str()), ERROR_SUCCESS);
    HKEY key = nullptr;
    EXPECT_EQ(Open(root_ + OLESTR("\\Tree"), key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open(root_ + OLESTR("\\Tree\\Branch\\Leaf"), key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open(root_ + OLESTR("\\Treetop"), key), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegDeleteTreeW(HKEY_CLASSES_ROOT, (root_ + OLESTR("\\tree")).c_str()),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, TurnsProgIdsIntoClassesAndBack) {
    const Wide classText = OLESTR("{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}");
    const CLSID clsid = {
        0x0F1E2D3C, 0x4B5A, 0x6978, {0x87, 0x96, 0xA5, 0xB4, 0xC3, 0xD2, 0xE1, 0xF0}};
    HKEY key = Create(root_ + OLESTR("\\CLSID"));
    Set(key, nullptr, classText);
    RegCloseKey(key);
    key = Create(OLESTR("CLSID\\") + classText + OLESTR("\\ProgID"));
    Set(key, nullptr, kRoot);
    RegCloseKey(key);

    CLSID found = CLSID_NULL;
    EXPECT_EQ(CLSIDFromProgID(kRoot, &found), S_OK);
    EXPECT_EQ(found, clsid);
    LPOLESTR progId = nullptr;
    ASSERT_EQ(ProgIDFromCLSID(clsid, &progId), S_OK);
    EXPECT_EQ(Wide(progId), kRoot);
    CoTaskMemFree(progId);

    RegDeleteTreeW(HKEY_CLASSES_ROOT, (OLESTR("CLSID\\") + classText).c_str());
    EXPECT_EQ(ProgIDFromCLSID(clsid, &progId), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(progId, nullptr);
    EXPECT_EQ(CLSIDFromProgID(OLESTR("Quorvane.NoSuchThing"), &found), CO_E_CLASSSTRING);
}

TEST(IdentifierText, HasItsForm) {
    const GUID guid = {
        0x2C77ADD0, 0xDAF1, 0x477C, {0xBB, 0xAD, 0x97, 0x77, 0x5D, 0xD7, 0xA5, 0x0C}};
    OLECHAR text[39] = {};
    EXPECT_EQ(StringFromGUID2(guid, text, 39), 39);
    EXPECT_EQ(Wide(text), OLESTR("{2C77ADD0-DAF1-477C-BBAD-97775DD7A50C}"));
    EXPECT_EQ(StringFromGUID2(guid, text, 38), 0);
}

}  // namespace
