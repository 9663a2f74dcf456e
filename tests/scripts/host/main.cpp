// scripthost.exe [-t seconds] [-i library]... file.js|file.vbs [argument...]
//
// Runs a script file unattended, after the libraries that are to be included. Errors go to the
// standard error stream. Exit status: what the script gave to WScript.Quit, 0 at its end, 2 for
// wrong use, 3 for a script error, 4 when the time is up.
#include <windows.h>
#include <fcntl.h>
#include <io.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "automation/wide_string.h"
#include "tests/scripts/host/console.h"
#include "tests/scripts/host/script_engine.h"
#include "tests/support/time_limit/time_limit.h"

namespace scripthost {
namespace {

enum ExitStatus { kWrongUse = 2, kScriptError = 3, kTimeUp = 4 };

struct CommandLine {
    std::optional<long> seconds;
    std::vector<std::wstring> files;  // libraries, then the script
    std::vector<std::wstring> arguments;
};

std::optional<CommandLine> Parse(const std::vector<std::wstring>& words) {
    CommandLine line;
    std::size_t next = 0;
    for (; next + 1 < words.size() && words[next].starts_with(L'-'); next += 2) {
        if (words[next] == L"-t") {
            line.seconds = std::wcstol(words[next + 1].c_str(), nullptr, 10);
        } else if (words[next] == L"-i") {
            line.files.push_back(words[next + 1]);
        } else {
            return std::nullopt;
        }
    }
    if (next >= words.size()) return std::nullopt;
    line.files.push_back(words[next]);
    line.arguments.assign(words.begin() + static_cast<std::ptrdiff_t>(next) + 1, words.end());
    return line;
}

class Apartment {
public:
    Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~Apartment() {
        CoFreeUnusedLibraries();
        CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

std::optional<std::wstring> ReadScript(const std::wstring& name) {
    std::ifstream file(std::filesystem::path(name), std::ios::binary);
    if (!file) return std::nullopt;
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
    return quorvane::FromUtf8(bytes);
}

int RunAll(const CommandLine& line) {
    const Apartment apartment;
    WScript wscript(line.files.back(), line.arguments);
    ScriptEngine engine(wscript);
    if (FAILED(engine.Start(line.files.back()))) {
        WriteLine(stderr, L"scripthost: there is no engine for " + line.files.back());
        return kWrongUse;
    }
    for (const std::wstring& file : line.files) {
        const std::optional<std::wstring> code = ReadScript(file);
        if (!code) {
            WriteLine(stderr, L"scripthost: can't read " + file);
            return kWrongUse;
        }
        if (engine.Run(file, *code)) continue;
        return wscript.QuitCode().value_or(kScriptError);
    }
    return 0;
}

}  // namespace
}  // namespace scripthost

int wmain(int argc, wchar_t** argv) {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const auto line = scripthost::Parse({argv + 1, argv + argc});
    if (!line) {
        scripthost::WriteLine(
            stderr,
            L"usage: scripthost [-t seconds] [-i library]... file.js|file.vbs [argument...]");
        return scripthost::kWrongUse;
    }
    // No engine can be interrupted from outside, least of all in a call of a component.
    if (line->seconds) {
        LimitTime(std::chrono::seconds(*line->seconds), "scripthost: the time is up\n",
                  scripthost::kTimeUp);
    }
    return scripthost::RunAll(*line);
}
