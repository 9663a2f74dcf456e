#include <string>
#include <vector>

#include "cli/run.h"
#include "quorvane.hpp"

int wmain(int count, wchar_t** arguments) {
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i) {
        const std::wstring_view text = arguments[i];
        texts.push_back(quorvane::client::ToUtf8(std::u16string(text.begin(), text.end())));
    }
    return quorvane::cli::Run(texts);
}
