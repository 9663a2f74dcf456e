#include <winuser.h>

#include <algorithm>
#include <string_view>

namespace {

struct StringResource {
    UINT id;
    std::u16string_view text;
};

// The strings of the Windows library's resource file.
constexpr StringResource kStrings[] = {
    {100, u"Quorvane"},
};

}  // namespace

int LoadStringW(HINSTANCE, UINT id, LPWSTR text, int size) {
    const auto found =
        std::find_if(std::begin(kStrings), std::end(kStrings),
                     [id](const StringResource& resource) { return resource.id == id; });
    if (found == std::end(kStrings) || !text || size <= 0) return 0;
    const std::size_t length = found->text.copy(text, static_cast<std::size_t>(size) - 1);
    text[length] = u'\0';
    return static_cast<int>(length);
}
