// What is about the stand-in's own rules for paths, files and zones, and what it must leave alone.
#include <windows.h>
#include <process.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <future>
#include <string>

#include "tests/support/scratch_folder.h"

namespace {

HANDLE Open(const std::u16string& path, DWORD shareMode = FILE_SHARE_READ) {
    return CreateFileW(path.c_str(), GENERIC_READ, shareMode, nullptr, OPEN_EXISTING, 0, nullptr);
}

// Runs a function in another process and returns what it returns.
template <class Function>
int InOtherProcess(Function function) {
    const pid_t child = fork();
    if (child == 0) _exit(function());
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(LinuxPaths, TakeADriveForTheRoot) {
    const ScratchFolder folder;
    const std::u16string path = folder.Write("file", "x").u16string();
    std::u16string backslashes = path;
    for (char16_t& c : backslashes) {
        if (c == u'/') c = u'\\';
    }
    for (const std::u16string& name :
         {u"C:" + path, u"z:" + backslashes, backslashes, u"C:" + path.substr(1)}) {
        EXPECT_NE(GetFileAttributesW(name.c_str()), INVALID_FILE_ATTRIBUTES);
    }
    EXPECT_EQ(GetFileAttributesW(u"C:"), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_EQ(GetFileAttributesW(u"C:\\"), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
}

TEST(LinuxPaths, RefuseNamesThatAreNone) {
    const char16_t unpaired[] = {u'a', 0xD800, 0};
    EXPECT_EQ(Open(unpaired), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_NAME));
    EXPECT_EQ(CreateFileW(nullptr, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_NAME));
}

TEST(LinuxFiles, KeepNoLocksOfOtherPrograms) {
    const ScratchFolder folder;
    const std::filesystem::path path = folder.Write("file", "x");
    const int other = open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(other, 0);
    for (const short type : {F_RDLCK, F_WRLCK}) {
        struct flock whole = {};
        whole.l_type = type;
        whole.l_whence = SEEK_SET;
        ASSERT_EQ(fcntl(other, F_SETLK, &whole), 0);
        const HANDLE file = Open(path.u16string(), 0);
        EXPECT_NE(file, INVALID_HANDLE_VALUE) << type;
        CloseHandle(file);
        // Which took all locks of this process on the file along.
    }
    close(other);
}

TEST(LinuxFiles, KeepShareModesBetweenProcesses) {
    const ScratchFolder folder;
    const std::u16string path = folder.Write("file", "x").u16string();
    const auto openElsewhere = [&path](DWORD shareMode) {
        return InOtherProcess([&] {
            const HANDLE file = Open(path, shareMode);
            if (file == INVALID_HANDLE_VALUE) return static_cast<int>(GetLastError());
            CloseHandle(file);
            return 0;
        });
    };
    HANDLE file = Open(path, 0);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(openElsewhere(FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    CloseHandle(file);
    EXPECT_EQ(openElsewhere(FILE_SHARE_READ), 0);
    file = Open(path, FILE_SHARE_READ);
    EXPECT_EQ(openElsewhere(FILE_SHARE_READ), 0);
    EXPECT_EQ(openElsewhere(0), ERROR_SHARING_VIOLATION);
    CloseHandle(file);
    // However a process ends, its share modes end with it.
    EXPECT_EQ(InOtherProcess([&path] { return Open(path, 0) == INVALID_HANDLE_VALUE; }), 0);
    EXPECT_EQ(openElsewhere(0), 0);
}

TEST(LinuxFiles, AreFreeOnceTheyAreClosedWhoeverHasInheritedThem) {
    const ScratchFolder folder;
    const std::u16string path = folder.Write("file", "x").u16string();
    const HANDLE file = Open(path, 0);
    int life[2];
    ASSERT_EQ(pipe(life), 0);
    const pid_t child = fork();
    if (child == 0) {
        char end;
        close(life[1]);
        _exit(read(life[0], &end, 1) == 0 ? 0 : 1);  // as long as its parent holds the other end
    }
    CloseHandle(file);
    const HANDLE again = Open(path, 0);
    EXPECT_NE(again, INVALID_HANDLE_VALUE);
    CloseHandle(again);
    close(life[1]);
    close(life[0]);
    waitpid(child, nullptr, 0);
}

TEST(LinuxThreads, LeaveSignalsToTheHost) {
    const auto run = [](void* argument) WINAPI -> unsigned {
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        static_cast<std::promise<sigset_t>*>(argument)->set_value(blocked);
        return 0;
    };
    std::promise<sigset_t> told;
    ASSERT_NE(_beginthreadex(nullptr, 0, run, &told, 0, nullptr), 0u);
    const sigset_t there = told.get_future().get();
    sigset_t here;
    pthread_sigmask(SIG_BLOCK, nullptr, &here);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGCHLD, SIGUSR1}) {
        EXPECT_EQ(sigismember(&there, signal), 1) << signal;
        EXPECT_EQ(sigismember(&here, signal), 0) << signal;
    }
    EXPECT_EQ(sigismember(&there, SIGSEGV), 0);
}

TEST(LinuxFiles, DoNotWaitForTheOtherEndOfAPipe) {
    const ScratchFolder folder;
    const std::filesystem::path pipe = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Open(pipe.u16string()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(LinuxLastError, IsNotErrno) {
    SetLastError(1234);
    errno = 0;
    EXPECT_EQ(access("/no/such/file", F_OK), -1);
    EXPECT_EQ(GetLastError(), 1234u);
}

// In minutes. One process takes each zone after the other, so that nothing may stay of the one
// before.
TEST(LinuxZones, HaveTheirBiases) {
    const struct {
        const char* zone;
        LONG bias;
        LONG daylightBias;  // 0 for a zone without daylight time
    } cases[] = {
        {"UTC0", 0, 0},
        {"IST-5:30", -330, 0},
        {"<+0545>-5:45", -345, 0},
        {"MST7", 420, 0},
        {"CET-1CEST,M3.5.0,M10.5.0/3", -60, -60},
        {"CET-1", -60, 0},
        {"EST5EDT,M3.2.0,M11.1.0", 300, -60},
        {"NST3:30NDT,M3.2.0,M11.1.0", 210, -60},
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", -600, -60},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", -630, -30},
        // Ireland's rules call winter time the exception; it is standard time all the same.
        {"IST-1GMT0,M10.5.0,M3.5.0/1", 0, -60},
    };
    const auto faultOf = [](const auto& each) {
        setenv("TZ", each.zone, 1);
        tzset();
        TIME_ZONE_INFORMATION zone{};
        const DWORD inForce = GetTimeZoneInformation(&zone);
        if (zone.Bias != each.bias) return 1;
        if (zone.DaylightBias != each.daylightBias) return 2;
        if (each.daylightBias == 0) return inForce == TIME_ZONE_ID_UNKNOWN ? 0 : 3;
        // The time in force explains the offset that the C library has now.
        const time_t now = std::time(nullptr);
        const long offset = std::localtime(&now)->tm_gmtoff / 60;
        const LONG bias = zone.Bias + (inForce == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : 0);
        return -bias == offset && inForce != TIME_ZONE_ID_UNKNOWN ? 0 : 4;
    };
    const int result = InOtherProcess([&] {
        for (std::size_t i = 0; i < std::size(cases); ++i) {
            if (const int fault = faultOf(cases[i])) return 10 * static_cast<int>(i) + fault;
        }
        return 0;
    });
    EXPECT_EQ(result, 0) << cases[result / 10].zone << ": fault " << result % 10;
}

TEST(LinuxResources, HaveTheDisplayName) {
    WCHAR text[16] = {};
    EXPECT_EQ(LoadStringW(nullptr, 100, text, 16), 8);
    EXPECT_EQ(std::u16string(text), u"Quorvane");
    EXPECT_EQ(LoadStringW(nullptr, 100, text, 5), 4);
    EXPECT_EQ(std::u16string(text), u"Quor");
    EXPECT_EQ(LoadStringW(nullptr, 101, text, 16), 0);
}

}  // namespace
