// What is said about an argument that is no option.
#include "cli/unknown_option.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/option_values.h"
#include "cli/options.h"

namespace quorvane::cli {
namespace {

TEST(UnknownOption, IsNamedWithTheOneThatWasMeant) {
    const struct {
        std::vector<std::string> arguments;
        const char* text;
    } cases[] = {
        {{"--test", "x"}, "There is no option --test. Did you mean --text?"},
        {{"--htmlfile=x"}, "There is no option --htmlfile. Did you mean --html-file?"},
        {{"-to", "a@b"}, "There is no option -to. Did you mean --to?"},
        {{"--body", "x"}, "There is no option --body. Did you mean --text?"},
        {{"--port", "25"}, "There is no option --port. Did you mean --server HOST:PORT?"},
        {{"--colour", "x"}, "There is no option --colour."},
        {{"-x"}, "There is no option -x."},
        // Comes before what else is wrong.
        {{"--user", "zoe", "--password", "x"},
         "There is no option --password. Did you mean --password-file?"},
        // However alike a value before it is.
        {{"--text", "x", "--test", "x"}, "There is no option --test. Did you mean --text?"},
        {{"--from", "a@b", "--", "--to", "a@b"}, "There is no option --."},
        {{"--user", "zoe", "--"}, "--user requires --password-file"},
        {{"--subject", "my", "day"},
         "'day' belongs to no option. A value with blanks wants quotes around it."},
    };
    for (const auto& c : cases) {
        std::string text;
        try {
            ParseOptions(c.arguments);
        } catch (const UsageError& error) {
            text = error.what();
        }
        EXPECT_EQ(text, c.text);
    }
}

}  // namespace
}  // namespace quorvane::cli
