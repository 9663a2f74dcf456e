// The server within the process, and what is shown of its catch; the names that an import replaced.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "cli/catcher.h"
#include "cli/imported_references.h"
#include "cli/output.h"

namespace quorvane::cli {
namespace {

TEST(CatchingDialogue, TakesADialogueHoweverItIsCut) {
    const std::string dialogue =
        "EHLO x\r\nMAIL FROM:<a@x>\r\nRCPT TO:<b@y> NOTIFY=NEVER\r\nRCPT TO:<c@y>\r\nDATA\r\n"
        "QUIT\r\n..dot\r\n...\r\n\r\n.\r\nQUIT\r\n";
    for (std::size_t size = 1; size <= dialogue.size(); ++size) {
        CatchingDialogue server;
        std::string arrived, replies;
        for (std::size_t i = 0; i < dialogue.size(); i += size) {
            arrived += dialogue.substr(i, size);
            replies += server.Take(arrived);
        }
        EXPECT_EQ(replies,
                  "250 OK\r\n250 OK\r\n250 OK\r\n250 OK\r\n354 Go ahead\r\n250 Caught\r\n"
                  "221 Bye\r\n");
        EXPECT_EQ(server.caught().from, "a@x");
        EXPECT_EQ(server.caught().to, (std::vector<std::string>{"b@y", "c@y"}));
        EXPECT_EQ(server.caught().message, "QUIT\r\n.dot\r\n..\r\n\r\n");
    }
}

TEST(CaughtMessage, IsShownSoThatNothingActsOnATerminal) {
    const CaughtMessage caught{"a@x", {"b@y"}, "S: \xFC\x1B[2J\r\n\r\n\tx\x07\r\n"};
    const std::string envelope = "MAIL FROM:<a@x>\nRCPT TO:<b@y>\n\n";
    EXPECT_EQ(CaughtAsText(caught, false), envelope + "S: \xFC\x1B[2J\n\n\tx\x07\n");
    EXPECT_EQ(CaughtAsText(caught, true), envelope + "S: \xFC?[2J\n\n\tx?\n");
    EXPECT_EQ(CaughtAsJson({"a@x", {}, "\xFC\r\n"}),
              R"({"number":null,"status":"composed","code":0,"text":"","from":"a@x","to":[],)"
              "\"message\":\"\xEF\xBF\xBD\\r\\n\"}");
}

TEST(ImportedReferences, AreWhatDiffers) {
    const struct {
        const char* html;
        const char* imported;
        std::vector<std::string> references;
    } cases[] = {
        {"", "", {}},
        {"<p>cid:i0000</p>", "<p>cid:i0000</p>", {}},
        {"<img src=\"a.png\">", "<img src=\"cid:i0000\">", {"a.png"}},
        {"<img src=\"c\"> <img src=\"cid:i\">",
         "<img src=\"cid:i0000\"> <img src=\"cid:i0001\">",
         {"c", "cid:i"}},
        {"<img src=\"\"><img src=\"http://x\"><img src=\"b 1.gif\">",
         "<img src=\"cid:i0000\"><img src=\"http://x\"><img src=\"cid:i12345\">",
         {"", "b 1.gif"}},
        {"<img src='a.png'> cid:i", "<img src='cid:i0000'> cid:i", {"a.png"}},
        {"<img src='a.png'><b class=\"x\">", "<img src='cid:i0000\"x\">", {"a.png'><b class="}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ImportedReferences(c.html, c.imported), c.references) << c.html;
    }
}

}  // namespace
}  // namespace quorvane::cli
