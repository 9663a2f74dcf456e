#include <gtest/gtest.h>

#include <iterator>

#include "tests/server/registry_sandbox.h"
#include "tests/server/registry_text.h"

namespace quorvane {
namespace {

constexpr DWORD kLongest = 512;

// Keys below which the registration makes others, in its order.
constexpr const char* kObstacles[] = {
    "Quorvane.SmtpMail.1",
    "CLSID\\{3F65F138-64AE-4720-BE7F-C80BF657EDAB}",
    "CLSID\\{6EB6205B-0F08-455E-A80B-32AF0FF354AE}",
    "TypeLib\\{2C77ADD0-DAF1-477C-BBAD-97775DD7A5BC}",
};

void Append(HKEY parent, const std::string& path, std::string& out) {
    char name[kLongest];
    char data[kLongest];
    const std::size_t before = out.size();
    DWORD nameSize = kLongest;
    DWORD dataSize = kLongest;
    for (DWORD index = 0; RegEnumValueA(parent, index, name, &nameSize, nullptr, nullptr,
                                        reinterpret_cast<BYTE*>(data), &dataSize) == ERROR_SUCCESS;
         ++index, nameSize = kLongest, dataSize = kLongest) {
        out += TextOf({path, name, std::string(data)}) + '\n';
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
    if (out.size() == before && !path.empty()) out += path + '\n';
}

}  // namespace

RegistrySandbox::RegistrySandbox()
    : place_("Software\\QuorvaneTest-" + std::to_string(GetCurrentProcessId())) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, place_.c_str(), &key), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, key), ERROR_SUCCESS);
    RegCloseKey(key);
}

RegistrySandbox::~RegistrySandbox() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegDeleteTreeA(HKEY_CURRENT_USER, place_.c_str());
}

std::string RegistrySandbox::Contents() const {
    std::string lines;
    Append(HKEY_CLASSES_ROOT, "", lines);
    return lines;
}

// A volatile key can't have the lasting subkeys that registration makes.
bool RegistrySandbox::Hinder(int step) {
    const auto index = static_cast<std::size_t>(step);
    if (index >= std::size(kObstacles) || KeyExists(kObstacles[index])) return false;
    obstacle_ = kObstacles[index];
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, obstacle_.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_READ, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
    return true;
}

void RegistrySandbox::Unhinder() {
    RegDeleteTreeA(HKEY_CLASSES_ROOT, obstacle_.c_str());
}

}  // namespace quorvane
