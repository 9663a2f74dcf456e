// generate_messages FOLDER SEED FIRST COUNT: writes that many messages of the series to standard
// output, one line of JSON each: the number, the message as composed, and what it was made of.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "mime/message_composer.h"
#include "tests/mime/read_back/meant_message.h"

int main(int argc, char** argv) {
    using namespace quorvane;
    if (argc != 5) {
        std::fputs("usage: generate_messages FOLDER SEED FIRST COUNT\n", stderr);
        return 2;
    }
    const unsigned long long seed = std::strtoull(argv[2], nullptr, 10);
    const unsigned long long first = std::strtoull(argv[3], nullptr, 10);
    const unsigned long long count = std::strtoull(argv[4], nullptr, 10);
    for (unsigned long long number = first; number < first + count; ++number) {
        testing::MeantMessage made = testing::MakeMessage(seed, number, argv[1]);
        std::string composed;
        ComposeMessage(made.message, composed);
        if (made.composedTwice) ComposeMessage(made.message, composed);
        const nlohmann::json line{{"number", number},
                                  {"composed", testing::Hex(composed)},
                                  {"meaning", std::move(made.meaning)}};
        if (std::puts(line.dump().c_str()) < 0) return 1;
    }
    return 0;
}
