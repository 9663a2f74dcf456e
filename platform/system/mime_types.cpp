#include "mime_types.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace quorvane::platform {
namespace {

using Types = std::map<std::string, std::string, std::less<>>;

// Adds what a file says: lines of a type and its extensions, '#' before a comment. The first type
// that names an extension has it.
void ReadTypes(const std::string& path, Types& types) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string type;
        std::string extension;
        words >> type;
        while (words >> extension) types.emplace(extension, type);
    }
}

Types ReadAllTypes() {
    Types types;
    if (const char* home = std::getenv("HOME"))
        ReadTypes(std::string(home) + "/.mime.types", types);
    ReadTypes("/etc/mime.types", types);
    return types;
}

}  // namespace

std::string_view ContentTypeOf(std::string_view extension) {
    static const Types types = ReadAllTypes();
    const auto found = types.find(extension);
    return found == types.end() ? std::string_view() : found->second;
}

}  // namespace quorvane::platform
