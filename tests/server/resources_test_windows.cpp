// What the library carries beside its code: type library, version, strings.
#include <windows.h>
#include <winver.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/server/type_library_text.h"

namespace quorvane {
namespace {

std::wstring LibraryPath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(L"Quorvane.dll"), path, MAX_PATH);
    return path;
}

std::string Contents(const std::filesystem::path& name) {
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST(ResourcesTest, TypeLibraryIsAsReviewed) {
    const std::filesystem::path reviewed = QUORVANE_TEST_DATA "/server/typelib.txt";
    const std::string actual = TypeLibraryText(LibraryPath());
    if (actual == Contents(reviewed)) return;
    // Beside the program, to compare and, after a review, to take over.
    const std::filesystem::path kept =
        std::filesystem::path(LibraryPath()).replace_filename("typelib.txt");
    std::ofstream(kept, std::ios::binary) << actual;
    FAIL() << "The type library differs from " << reviewed << "; its text is now in " << kept;
}

TEST(ResourcesTest, ProjectNameIsString100) {
    wchar_t text[64] = {};
    LoadStringW(GetModuleHandleW(L"Quorvane.dll"), 100, text, 64);
    EXPECT_STREQ(text, L"Quorvane");
}

TEST(ResourcesTest, VersionIsTheProjects) {
    const std::wstring path = LibraryPath();
    std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_FALSE(block.empty());
    ASSERT_TRUE(
        GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &size));
    EXPECT_EQ(fixed->dwFileVersionMS, static_cast<DWORD>(MAKELONG(1, 4)));
    wchar_t* name = nullptr;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\ProductName",
                               reinterpret_cast<void**>(&name), &size));
    EXPECT_STREQ(name, L"Quorvane");
}

}  // namespace
}  // namespace quorvane
