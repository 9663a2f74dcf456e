#include "mime_types.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <utility>

#include "lasting.h"

namespace quorvane::platform {
namespace {

using Types = std::map<std::string, std::string, std::less<>>;

// Adds what a file says: lines of a type and its extensions, '#' before a comment. The first type
// that names an extension has it. False when the system is too short of something to say.
bool ReadTypes(const std::string& path, Types& types) {
    errno = 0;
    std::ifstream file(path);
    if (!file) return errno != EMFILE && errno != ENFILE && errno != ENOMEM;
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string type;
        std::string extension;
        words >> type;
        while (words >> extension) types.emplace(extension, type);
    }
    return true;
}

bool ReadAllTypes(Types& types) {
    const char* const home = std::getenv("HOME");
    return (!home || ReadTypes(std::string(home) + "/.mime.types", types)) &&
           ReadTypes("/etc/mime.types", types);
}

std::mutex g_mutex;
Lasting<std::optional<Types>> g_types;

}  // namespace

std::string_view ContentTypeOf(std::string_view extension) {
    std::optional<Types>& types = g_types.object;
    {
        const std::lock_guard lock(g_mutex);
        Types read;
        if (!types && ReadAllTypes(read)) types = std::move(read);
        if (!types) return {};
    }
    const auto found = types->find(extension);
    return found == types->end() ? std::string_view() : found->second;
}

}  // namespace quorvane::platform
