// Purpose: local time, its zone and the count of milliseconds agree with the clock and with each
// other.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <string>
#include <thread>

namespace {

// Seconds of a date and time, taken as UTC.
std::chrono::sys_seconds Seconds(const SYSTEMTIME& time) {
    using namespace std::chrono;
    return sys_days(year(time.wYear) / month(time.wMonth) / day(time.wDay)) + hours(time.wHour) +
           minutes(time.wMinute) + seconds(time.wSecond);
}

TEST(Clock, LocalTimeIsUtcLessTheBiasInForce) {
    using namespace std::chrono;
    TIME_ZONE_INFORMATION zone{};
    const DWORD inForce = GetTimeZoneInformation(&zone);
    ASSERT_LE(inForce, static_cast<DWORD>(TIME_ZONE_ID_DAYLIGHT));
    LONG bias = zone.Bias;
    if (inForce == TIME_ZONE_ID_DAYLIGHT) bias += zone.DaylightBias;
    if (inForce == TIME_ZONE_ID_STANDARD) bias += zone.StandardBias;
    SYSTEMTIME local{};
    const auto before = floor<seconds>(system_clock::now());
    GetLocalTime(&local);
    const auto after = floor<seconds>(system_clock::now());
    const auto utc = Seconds(local) + minutes(bias);
    EXPECT_GE(utc, before);
    EXPECT_LE(utc, after);
    const weekday day(floor<days>(Seconds(local)));
    EXPECT_EQ(local.wDayOfWeek, day.c_encoding());
    EXPECT_LT(local.wMilliseconds, 1000);
}

TEST(Clock, TicksOnAndOn) {
    const ULONGLONG start = GetTickCount64();
    const DWORD low = GetTickCount();
    EXPECT_LT(low - static_cast<DWORD>(start), 60000u);
    // It moves by what a wait takes; the wait itself may take longer.
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_GE(GetTickCount64() - start, 40u);
}

TEST(ComputerName, IsInCapitalsAndFits) {
    WCHAR name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(name, &size));
    const std::basic_string<WCHAR> text(name);
    EXPECT_EQ(text.size(), size);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find(WCHAR('.')), text.npos);
    EXPECT_TRUE(std::none_of(text.begin(), text.end(),
                             [](WCHAR c) { return c >= WCHAR('a') && c <= WCHAR('z'); }));
    size = 1;
    EXPECT_FALSE(GetComputerNameW(name, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
    EXPECT_GT(size, text.size());
}

TEST(Module, TellsItsPathAndCutsItWhenItMust) {
    WCHAR path[1024] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, 1024);
    ASSERT_GT(length, 4u);
    EXPECT_EQ(std::basic_string<WCHAR>(path).size(), length);
    EXPECT_NE(GetFileAttributesW(path), INVALID_FILE_ATTRIBUTES);
    WCHAR cut[4] = {};
    EXPECT_EQ(GetModuleFileNameW(nullptr, cut, 4), 4u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::basic_string<WCHAR>(cut, 3), std::basic_string<WCHAR>(path, 3));
}

}  // namespace
