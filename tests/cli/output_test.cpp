// What is said about outcomes, whatever a server put into their text.
#include "cli/output.h"

#include <gtest/gtest.h>

#include "cli/progress.h"

namespace quorvane::cli {
namespace {

TEST(Output, Json) {
    EXPECT_EQ(OutcomeAsJson({}), R"({"number":null,"status":"sent","code":0,"text":""})");
    EXPECT_EQ(OutcomeAsJson({550, "550 \"no\"\r\n\x1B[2J ü"}),
              R"({"number":null,"status":"failed","code":550,"text":"550 \"no\"\r\n)"
              "\\u001b[2J ü\"}");
    EXPECT_EQ(OutcomeAsJson({-2, ""}, 7, MailStatusCanceled),
              R"({"number":7,"status":"cancelled","code":-2,"text":""})");
}

TEST(Output, TextKeepsLinesAndNothingElseThatATerminalActsOn) {
    EXPECT_EQ(OutcomeAsText({550,
                             "550-no\r\n550 \x1B[2Jnever\x7F\t\xC2\x9B"
                             "1m ü"}),
              "550-no\n    550 ?[2Jnever???1m ü");
    EXPECT_EQ(OutcomeAsText({-1, "DNS server failure.\r\n"}), "-1: DNS server failure.");
    EXPECT_EQ(OutcomeAsText({-1, ""}), "-1: ");
    EXPECT_EQ(OutcomeAsText({535, "Authentication failed"}), "535: Authentication failed");
}

TEST(Output, AnInterruptedRunCountsWhatWasNotTriedAsCancelled) {
    using std::chrono::milliseconds;
    EXPECT_EQ(InterruptedSummary({2000, 12, 3, 985, milliseconds(0), 0, 0}),
              "interrupted. 12 of 2000 sent, 3 failed, 1985 cancelled.");
    EXPECT_EQ(InterruptedSummary({1, 0, 0, 1, milliseconds(0), 0, 0}), "interrupted. Not sent.");
}

TEST(Output, ProgressFitsALineAndSaysOnlyWhatIsKnown) {
    using std::chrono::milliseconds;
    const struct {
        Progress progress;
        const char* line;
    } cases[] = {
        {{1, 0, 0, 0, milliseconds(0), 0, 0}, ""},
        {{1, 0, 0, 0, milliseconds(4000), 1'000'000, 4'000'000},
         "[##########..............................] 25 %, 1.0 of 4.0 MB, 12 s left"},
        {{100, 0, 0, 0, milliseconds(0), 0, 0}, "0 sent, 0 failed, 100 queued"},
        {{100, 0, 0, 0, milliseconds(900), 8192, 3'400'000},
         "0 sent, 0 failed, 100 queued, 0.0 of 3.4 MB"},
        {{100, 10, 2, 0, milliseconds(600), 0, 0}, "10 sent, 2 failed, 88 queued, 20/s, 4 s left"},
        {{100, 1, 0, 0, milliseconds(90'000), 0, 0},
         "1 sent, 0 failed, 99 queued, 0.0/s, 2 h left"},
        {{1000, 1, 0, 0, milliseconds(500), 0, 0},
         "1 sent, 0 failed, 999 queued, 2.0/s, 8 min left"},
        {{3, 2, 1, 0, milliseconds(1000), 0, 0}, "2 sent, 1 failed, 0 queued, 3.0/s"},
        {{1'000'000, 0, 999'999, 0, milliseconds(86'400'000), 2'000'000'000, 2'000'000'000},
         "0 sent, 999999 failed, 1 queued, 12/s, 0 s left, 2000 of 2000 MB"},
        {{1'000'000, 333'333, 333'333, 333'333, milliseconds(86'400'000), 1, 2'000'000'000},
         "333333 sent, 333333 failed, 333333 cancelled, 1 queued, 12/s, 0 s left"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ProgressLine(c.progress), c.line);
        EXPECT_LT(ProgressLine(c.progress).size(), 80u);
    }
}

}  // namespace
}  // namespace quorvane::cli
