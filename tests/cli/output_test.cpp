// What is said about outcomes, whatever a server put into their text.
#include "cli/output.h"

#include <gtest/gtest.h>

namespace quorvane::cli {
namespace {

TEST(Output, Json) {
    EXPECT_EQ(OutcomeAsJson({}), R"({"number":null,"status":"sent","code":0,"text":""})");
    EXPECT_EQ(OutcomeAsJson({550, "550 \"no\"\r\n\x1B[2J ü"}),
              R"({"number":null,"status":"failed","code":550,"text":"550 \"no\"\r\n)"
              "\\u001b[2J ü\"}");
}

TEST(Output, TextKeepsLinesAndNothingElseThatATerminalActsOn) {
    EXPECT_EQ(OutcomeAsText({550,
                             "550-no\r\n550 \x1B[2Jnever\x7F\t\xC2\x9B"
                             "1m ü"}),
              "550: 550-no\n    550 ?[2Jnever???1m ü");
    EXPECT_EQ(OutcomeAsText({-1, "DNS server failure.\r\n"}), "-1: DNS server failure.");
    EXPECT_EQ(OutcomeAsText({-1, ""}), "-1: ");
}

}  // namespace
}  // namespace quorvane::cli
