// Purpose: files are found under either separator, kept from others as their share mode says, and
// failures are told by their numbers.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/support/scratch_folder.h"

namespace {

using Wide = std::basic_string<WCHAR>;

HANDLE Open(const Wide& path, DWORD shareMode = FILE_SHARE_READ) {
    return CreateFileW(path.c_str(), GENERIC_READ, shareMode, nullptr, OPEN_EXISTING,
                       FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

TEST(Files, ReadToTheirEnd) {
    const ScratchFolder folder;
    const HANDLE file = Open(ToWide(folder.Write("data.bin", std::string_view("a\0b\r\nc", 6))));
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    LARGE_INTEGER size{};
    EXPECT_TRUE(GetFileSizeEx(file, &size));
    EXPECT_EQ(size.QuadPart, 6);
    char buffer[8] = {};
    DWORD read = 99;
    EXPECT_TRUE(ReadFile(file, buffer, 4, &read, nullptr));
    EXPECT_EQ(read, 4u);
    EXPECT_TRUE(ReadFile(file, buffer + 4, 4, &read, nullptr));
    EXPECT_EQ(read, 2u);
    EXPECT_EQ(std::string_view(buffer, 6), std::string_view("a\0b\r\nc", 6));
    // At the end: success and nothing.
    EXPECT_TRUE(ReadFile(file, buffer, 8, &read, nullptr));
    EXPECT_EQ(read, 0u);
    EXPECT_TRUE(CloseHandle(file));
}

TEST(Files, AreFoundUnderEitherSeparator) {
    const ScratchFolder folder;
    Wide path = ToWide(folder.Write("plain.txt", "x"));
    for (const WCHAR separator : {WCHAR('\\'), WCHAR('/')}) {
        std::replace_if(
            path.begin(), path.end(), [](WCHAR c) { return c == '\\' || c == '/'; }, separator);
        EXPECT_EQ(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
        const HANDLE file = Open(path);
        EXPECT_NE(file, INVALID_HANDLE_VALUE);
        CloseHandle(file);
    }
}

TEST(Files, HaveNamesInAnyScript) {
    const ScratchFolder folder;
    const Wide path = ToWide(
        folder.Write("\xD0\xBF\xD0\xB8\xD1\x81\xD1\x8C\xD0\xBC\xD0\xBE \xF0\x9F\x98\x80.txt", "x"));
    const HANDLE file = Open(path);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    CloseHandle(file);
}

TEST(Files, TellWhyTheyCannotBeOpened) {
    const ScratchFolder folder;
    const Wide place = ToWide(folder.path());
    const Wide file = ToWide(folder.Write("file", "x"));
    const struct {
        Wide path;
        DWORD error;
    } cases[] = {
        {place + Wide({'/', 'n', 'o', 'n', 'e'}), ERROR_FILE_NOT_FOUND},
        {place + Wide({'/', 'n', 'o', '/', 'f'}), ERROR_PATH_NOT_FOUND},
        {file + Wide({'/', 'f'}), ERROR_PATH_NOT_FOUND},
        {place, ERROR_ACCESS_DENIED},
        {Wide(), ERROR_PATH_NOT_FOUND},
    };
    for (const auto& each : cases) {
        SetLastError(0);
        EXPECT_EQ(Open(each.path), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), each.error) << testing::PrintToString(each.path);
    }
}

TEST(Files, AreToldFromFolders) {
    const ScratchFolder folder;
    const DWORD attributes = GetFileAttributesW(ToWide(folder.path()).c_str());
    ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(attributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW((ToWide(folder.path() / "none")).c_str()),
              INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST(Files, AreKeptFromOthersAsTheirShareModeSays) {
    const ScratchFolder folder;
    const Wide path = ToWide(folder.Write("shared", "x"));
    const struct {
        DWORD first, second;
        bool together;
    } cases[] = {
        {FILE_SHARE_READ, FILE_SHARE_READ, true},
        {0, FILE_SHARE_READ, false},
        {FILE_SHARE_READ, 0, false},
        {0, 0, false},
    };
    for (const auto& each : cases) {
        const HANDLE first = Open(path, each.first);
        ASSERT_NE(first, INVALID_HANDLE_VALUE);
        HANDLE second = Open(path, each.second);
        EXPECT_EQ(second != INVALID_HANDLE_VALUE, each.together);
        if (!each.together) {
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
            // The refused open left nothing behind, and the first one is as good as before.
            char byte = 0;
            DWORD read = 0;
            EXPECT_TRUE(ReadFile(first, &byte, 1, &read, nullptr));
            EXPECT_EQ(byte, 'x');
            EXPECT_TRUE(CloseHandle(first));
            second = Open(path, each.second);
            EXPECT_NE(second, INVALID_HANDLE_VALUE);
        } else {
            EXPECT_TRUE(CloseHandle(first));
        }
        EXPECT_TRUE(CloseHandle(second));
    }
}

TEST(Files, RefuseHandlesThatAreNone) {
    const ScratchFolder folder;
    const HANDLE file = Open(ToWide(folder.Write("file", "x")));
    ASSERT_TRUE(CloseHandle(file));
    char byte;
    DWORD read = 0;
    EXPECT_FALSE(ReadFile(file, &byte, 1, &read, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(ReadFile(INVALID_HANDLE_VALUE, &byte, 1, &read, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    LARGE_INTEGER size;
    EXPECT_FALSE(GetFileSizeEx(file, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(CloseHandle(file));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(LastError, BelongsToItsThread) {
    std::atomic<int> step{0};
    std::thread other([&step] {
        while (step != 1) {
        }
        SetLastError(5);
        step = 2;
    });
    SetLastError(1234);
    step = 1;
    while (step != 2) {
    }
    EXPECT_EQ(GetLastError(), 1234u);
    other.join();
}

}  // namespace
