// Registration writes nothing beside what was reviewed, and unregistering leaves nothing beside
// the application identity. Everything below the root is read, which only Windows can.
#include <windows.h>
#include <olectl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/server/registry_sandbox.h"
#include "tests/server/registry_text.h"

namespace quorvane {
namespace {

using testing::EndsWith;
using testing::Optional;
using testing::UnorderedElementsAreArray;

constexpr const char* kLibrary = "TypeLib\\{2C77ADD0-DAF1-477C-BBAD-97775DD7A5BC}";

constexpr const char* kProxies = "CLSID\\{CC0ACE55-4E2E-4C0C-8234-2D3EF46E3F5C}";
constexpr const char* kDualInterfaces[] = {
    "{34607EDA-3968-4C5B-A472-7BAF4435C7B4}",
    "{CC0ACE55-4E2E-4C0C-8234-2D3EF46E3F5C}",
    "{DC0D529B-D7E7-4F48-9DB8-54ECECEDDD60}",
    "{8E065787-BC79-4415-AEE6-D8EE15AEA9D6}",
};

// Everything but what the system itself writes for a type library and its interfaces.
std::vector<std::string> WholeRegistry(const RegistrySandbox& sandbox) {
    std::vector<std::string> lines;
    std::istringstream all(sandbox.Contents());
    for (std::string line; std::getline(all, line);) {
        const bool isSystems =
            line.starts_with("Interface") || _strnicmp(line.c_str(), "TypeLib", 7) == 0;
        if (!isSystems) lines.push_back(line);
    }
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
    const std::string server = std::string(kProxies) + "\\InProcServer32";
    expected.push_back(TextOf({kProxies, "", "PSFactoryBuffer"}));
    expected.push_back(TextOf({server, "", *module}));
    expected.push_back(TextOf({server, "ThreadingModel", "Both"}));
    EXPECT_THAT(WholeRegistry(sandbox), UnorderedElementsAreArray(expected));

    const std::string version = std::string(kLibrary) + "\\1.0";
    EXPECT_EQ(ReadValue(version, ""), "Quorvane 4.1 Type Library");
    EXPECT_THAT(ReadValue(version + "\\409\\win64", ""), Optional(EndsWith(*module)));
    for (const std::string iid : kDualInterfaces) {
        EXPECT_EQ(
            "CLSID\\" + ReadValue("Interface\\" + iid + "\\ProxyStubClsid32", "").value_or(""),
            kProxies);
    }
}

TEST(WholeRegistryTest, IsLeftWithTheApplicationIdentity) {
    const RegistrySandbox sandbox;
    ASSERT_EQ(DllRegisterServer(), S_OK);
    std::vector<std::string> expected{"CLSID"};
    for (const RegistryLine& line : ReviewedRegistry("")) {
        if (line.key.starts_with("AppID")) expected.push_back(TextOf(line));
    }
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_THAT(WholeRegistry(sandbox), UnorderedElementsAreArray(expected));
    EXPECT_FALSE(KeyExists(kLibrary));
    for (const std::string iid : kDualInterfaces) EXPECT_FALSE(KeyExists("Interface\\" + iid));
}

}  // namespace
}  // namespace quorvane
