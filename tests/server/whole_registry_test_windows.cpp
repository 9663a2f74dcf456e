// Registration writes nothing beside what was reviewed, and unregistering leaves nothing beside
// the application identity. Everything below the root is read, which only Windows can.
#include <windows.h>
#include <olectl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/server/registry_sandbox.h"
#include "tests/server/registry_text.h"

namespace quorvane {
namespace {

using testing::EndsWith;
using testing::Optional;
using testing::UnorderedElementsAreArray;

constexpr DWORD kLongest = 512;
constexpr const char* kLibrary = "TypeLib\\{2C77ADD0-DAF1-477C-BBAD-97775DD7A5BC}";

// The keys without values and subkeys, and all values, below a key.
void Append(HKEY parent, const std::string& path, std::vector<std::string>& out) {
    char name[kLongest];
    char data[kLongest];
    const std::size_t before = out.size();
    DWORD nameSize = kLongest;
    DWORD dataSize = kLongest;
    for (DWORD index = 0; RegEnumValueA(parent, index, name, &nameSize, nullptr, nullptr,
                                        reinterpret_cast<BYTE*>(data), &dataSize) == ERROR_SUCCESS;
         ++index, nameSize = kLongest, dataSize = kLongest) {
        out.push_back(TextOf({path, name, std::string(data)}));
    }
    nameSize = kLongest;
    for (DWORD index = 0; RegEnumKeyExA(parent, index, name, &nameSize, nullptr, nullptr, nullptr,
                                        nullptr) == ERROR_SUCCESS;
         ++index, nameSize = kLongest) {
        HKEY child = nullptr;
        ASSERT_EQ(RegOpenKeyExA(parent, name, 0, KEY_READ, &child), ERROR_SUCCESS);
        Append(child, path.empty() ? name : path + "\\" + name, out);
        RegCloseKey(child);
    }
    if (out.size() == before && !path.empty()) out.push_back(path);
}

// Everything but what the system itself writes for a type library and its interfaces.
std::vector<std::string> WholeRegistry() {
    std::vector<std::string> lines;
    Append(HKEY_CLASSES_ROOT, "", lines);
    std::erase_if(lines, [](const std::string& line) {
        return line.starts_with("Interface") || _strnicmp(line.c_str(), "TypeLib", 7) == 0;
    });
    return lines;
}

TEST(WholeRegistryTest, HoldsWhatWasReviewedAndTheTypeLibrary) {
    const RegistrySandbox sandbox;
    ASSERT_EQ(DllRegisterServer(), S_OK);
    const auto module =
        ReadValue("CLSID\\{DD535C98-F63E-476F-BF8B-E508C7DAD21F}\\InprocServer32", "");
    ASSERT_TRUE(module);
    std::vector<std::string> expected;
    for (const RegistryLine& line : ReviewedRegistry(*module)) expected.push_back(TextOf(line));
    EXPECT_THAT(WholeRegistry(), UnorderedElementsAreArray(expected));

    const std::string version = std::string(kLibrary) + "\\1.0";
    EXPECT_EQ(ReadValue(version, ""), "Quorvane 4.1 Type Library");
    EXPECT_THAT(ReadValue(version + "\\409\\win64", ""), Optional(EndsWith(*module)));
}

TEST(WholeRegistryTest, IsLeftWithTheApplicationIdentity) {
    const RegistrySandbox sandbox;
    ASSERT_EQ(DllRegisterServer(), S_OK);
    std::vector<std::string> expected{"CLSID"};
    for (const RegistryLine& line : ReviewedRegistry("")) {
        if (line.key.starts_with("AppID")) expected.push_back(TextOf(line));
    }
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_THAT(WholeRegistry(), UnorderedElementsAreArray(expected));
    EXPECT_FALSE(KeyExists(kLibrary));
}

}  // namespace
}  // namespace quorvane
