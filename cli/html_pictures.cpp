#include "cli/html_pictures.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "cli/imported_references.h"
#include "cli/option_values.h"
#include "cli/system.h"
#include "cli/text_input.h"

namespace quorvane::cli {

namespace {

using client::Bstr;

// The bytes that the component took for characters of the ANSI code page.
std::string AnsiBytes(BSTR text) {
    const int units = static_cast<int>(SysStringLen(text));
    const int size =
        WideCharToMultiByte(CP_THREAD_ACP, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(std::max(size, 0)), '\0');
    WideCharToMultiByte(CP_THREAD_ACP, 0, text, units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

// Where the component looks for what an HTML file calls by this name.
std::string PlaceOf(std::string reference, const std::string& file) {
    if (reference.size() < 2) return reference;
    std::replace(reference.begin(), reference.end(), '\\', '/');
    const bool hasDrive = reference.substr(0, 2).find(':') == 1;
    if (reference.starts_with('/') || hasDrive) return system::ComponentsPath(reference);
    const auto folder = file.find_last_of("/\\");
    return (folder == file.npos ? "" : file.substr(0, folder + 1)) + reference;
}

std::string BeyondAscii(std::string_view text) {
    std::string bytes;
    std::copy_if(text.begin(), text.end(), std::back_inserter(bytes),
                 [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    return bytes;
}

}  // namespace

std::string ImportPictures(const std::string& file, const std::string& html,
                           client::Message& message) {
    Bstr imported;
    try {
        message.ImportHtml(file);
        client::Check(message.com()->get_MessageBody(imported.Put()), message.com());
    } catch (const client::Error& error) {
        throw UsageError(std::string(error.what()) + ". With --no-import it is sent as it is.");
    }
    // The component reads the file in the ANSI code page, whatever its text really is. Taken back
    // to bytes it is UTF-8 again, unless something got lost: a character that the code page can't
    // give back, or a reference with characters that would now name another file.
    const std::string text = WithoutByteOrderMark(AnsiBytes(imported));
    if (BeyondAscii(text) != BeyondAscii(html)) {
        throw UsageError("A picture in " + file +
                         " has a name with characters beyond ASCII, which can't be imported. Give "
                         "it another name, or use --no-import.");
    }
    std::string body = WithMailLineEnds(text);
    for (const std::string& reference : ImportedReferences(html, body)) {
        RequireContent(PlaceOf(reference, file));
    }
    return body;
}

}  // namespace quorvane::cli
