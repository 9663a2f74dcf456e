// The main function of the test programs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "tests/support/time_limit/time_limit.h"

namespace {

// Far more than the slowest case takes under a sanitizer on a slow machine.
constexpr std::chrono::seconds kLimit{150};
constexpr int kHangs = 124;  // as the command timeout has it

// Names a case that hangs.
class CaseLimit : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        words_ = std::string("[  HANGS   ] ") + test.test_suite_name() + '.' + test.name() +
                 " has taken " + std::to_string(kLimit.count()) + " seconds\n";
        LimitTime(kLimit, words_.c_str(), kHangs);
    }
    void OnTestEnd(const testing::TestInfo&) override { LiftTimeLimit(); }

    std::string words_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new CaseLimit);  // which it owns
    return RUN_ALL_TESTS();
}
