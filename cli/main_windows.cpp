#include <string>
#include <vector>

#include "cli/run.h"
#include "cli/system.h"
#include "quorvane.hpp"

int wmain(int count, wchar_t** arguments) {
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i) {
        const std::wstring_view units = arguments[i];
        const std::u16string text(units.begin(), units.end());
        texts.push_back(quorvane::client::ToUtf8(text));
        if (quorvane::client::ToUtf16(texts.back()) != text) {
            quorvane::cli::system::WriteError("quorvane-send: '" + texts.back() +
                                              "' is not valid Unicode text.\n");
            return quorvane::cli::kWrongUse;
        }
    }
    return quorvane::cli::Run(texts);
}
