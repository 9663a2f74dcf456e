// What is about the file that keeps the registry on Linux.
#include <windows.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace {

class RegistryFileTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.path().c_str(), 1);
        setenv("HOME", folder_.path().c_str(), 1);
    }
    void TearDown() override { unsetenv("XDG_DATA_HOME"); }

    std::filesystem::path File() const { return folder_.path() / "quorvane" / "registry"; }

    static LSTATUS Store(const std::u16string& path, const std::u16string& text) {
        HKEY key = nullptr;
        const LSTATUS error =
            RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_WRITE, nullptr, &key, nullptr);
        if (error != ERROR_SUCCESS) return error;
        const LSTATUS result =
            RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                           static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
        RegCloseKey(key);
        return result;
    }

    // A value of a key; "(none)" when there is no such key or value.
    static std::u16string Value(const std::u16string& path, LPCWSTR name = nullptr) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
            return u"(none)";
        }
        WCHAR text[260] = {};
        DWORD size = sizeof text;
        const LSTATUS error =
            RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
        RegCloseKey(key);
        return error == ERROR_SUCCESS ? text : u"(none)";
    }

    std::string Contents() const {
        std::ostringstream text;
        text << std::ifstream(File()).rdbuf();
        return text.str();
    }

    // Runs a function in another process; what it returns is the exit status.
    template <class Function>
    static pid_t Start(Function function) {
        const pid_t child = fork();
        if (child == 0) _exit(function());
        return child;
    }
    static int Finish(pid_t child) {
        int status = -1;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    ScratchFolder folder_;
};

TEST_F(RegistryFileTest, OutlivesTheProcess) {
    EXPECT_EQ(Finish(Start([] { return static_cast<int>(Store(u"Key\\Sub", u"kept")); })), 0);
    EXPECT_EQ(Value(u"key\\sub"), u"kept");
    // And a process that has read it sees what another one changes.
    EXPECT_EQ(Finish(Start([] { return static_cast<int>(Store(u"Key\\Sub", u"changed")); })), 0);
    EXPECT_EQ(Value(u"key\\sub"), u"changed");
    struct stat status;
    ASSERT_EQ(stat(File().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(RegistryFileTest, LosesNothingWhenManyWrite) {
    constexpr int kProcesses = 4;
    constexpr int kKeys = 25;
    const auto name = [](int process, int key) {
        std::u16string text = u"Many\\";
        text += static_cast<char16_t>(u'a' + process);
        text += static_cast<char16_t>(u'a' + key);
        return text;
    };
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(Start([&] {
            for (int key = 0; key < kKeys; ++key) {
                if (Store(name(process, key), u"x") != ERROR_SUCCESS) return 1;
            }
            return 0;
        }));
    }
    std::thread thread([&] {
        for (int key = 0; key < kKeys; ++key) Store(name(kProcesses, key), u"x");
    });
    thread.join();
    for (const pid_t child : children) EXPECT_EQ(Finish(child), 0);
    for (int process = 0; process <= kProcesses; ++process) {
        for (int key = 0; key < kKeys; ++key) EXPECT_EQ(Value(name(process, key)), u"x");
    }
}

TEST_F(RegistryFileTest, TakesADamagedFileForAnEmptyOne) {
    ASSERT_EQ(Store(u"Key", u"text"), ERROR_SUCCESS);
    const std::string sound = Contents();
    const std::string heading = sound.substr(0, sound.find('\n') + 1);
    std::vector<std::string> damaged = {
        "",
        "\n",
        "something else\n",
        heading,
        heading + "key\n" + "end\n",
        heading + "value\t1\tname\tdata\nend\n",          // of no key
        heading + "key\tk\nvalue\tx\tname\tdata\nend\n",  // of no type
        heading + "key\tk\nvalue\t1\tname\nend\n",
        heading + "key\t%12\nend\n",
        heading + "key\t%GGGG\nend\n",
        heading + "key\tk\xC3\xA9\nend\n",
        std::string(1 << 16, '\0'),
    };
    for (std::size_t length = 1; length < sound.size(); ++length) {
        damaged.push_back(sound.substr(0, length));
    }
    for (const std::string& text : damaged) {
        std::filesystem::remove(File());
        std::ofstream(File(), std::ios::binary) << text;
        EXPECT_EQ(Value(u"Key"), u"(none)") << testing::PrintToString(text);
    }
    // Writing makes it whole again.
    EXPECT_EQ(Store(u"Key", u"again"), ERROR_SUCCESS);
    EXPECT_EQ(Value(u"Key"), u"again");
}

TEST_F(RegistryFileTest, RefusesToWriteWhereItCannot) {
    setenv("XDG_DATA_HOME", "/dev/null/no", 1);
    EXPECT_EQ(Store(u"Key", u"x"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Value(u"Key"), u"(none)");
    unsetenv("XDG_DATA_HOME");
    unsetenv("HOME");
    EXPECT_EQ(Store(u"Key", u"x"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Value(u"Key"), u"(none)");
}

TEST_F(RegistryFileTest, RefusesHandlesThatAreNone) {
    HKEY key = nullptr;
    ASSERT_EQ(Store(u"Key", u"x"), ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, u"Key", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
}

// The system's types, read once in a process: each case is one of its own.
TEST_F(RegistryFileTest, KnowsTheContentTypesOfExtensions) {
    std::ofstream(folder_.path() / ".mime.types") << "# my own\n"
                                                     "text/x-note\tnote NoteS\n"
                                                     "\n"
                                                     "application/x-pdf-of-mine pdf # not theirs\n"
                                                     "text/x-second note\n";
    const struct {
        const char16_t* key;
        const char16_t* type;
    } cases[] = {
        {u".note", u"text/x-note"},
        {u".NOTE", u"text/x-note"},
        {u".pdf", u"application/x-pdf-of-mine"},
        {u".tar.gz", u"(none)"},
        {u".", u"(none)"},
        {u"note", u"(none)"},
        {u".note\\x", u"(none)"},
        {u".no-such-extension", u"(none)"},
    };
    EXPECT_EQ(Finish(Start([&] {
                  for (const auto& each : cases) {
                      if (Value(each.key, u"Content Type") != each.type) return 1;
                  }
                  return 0;
              })),
              0);
    // A registered type comes first.
    EXPECT_EQ(Finish(Start([] {
                  HKEY key = nullptr;
                  RegCreateKeyExW(HKEY_CLASSES_ROOT, u".note", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_WRITE, nullptr, &key, nullptr);
                  if (Value(u".note", u"Content Type") != u"text/x-note") return 1;
                  RegSetValueExW(key, u"Content Type", 0, REG_SZ,
                                 reinterpret_cast<const BYTE*>(u"text/own"), 18);
                  return Value(u".note", u"content type") == u"text/own" ? 0 : 2;
              })),
              0);
}

}  // namespace
