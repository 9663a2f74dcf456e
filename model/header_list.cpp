#include "model/header_list.h"

#include "automation/wide_string.h"
#include "model/growable.h"

namespace quorvane {
namespace {

template <class Matches>
std::size_t FindFirst(const std::vector<HeaderField>& fields, Matches matches) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (matches(fields[i].name)) return i;
    }
    return HeaderList::npos;
}

}  // namespace

void HeaderList::Append(std::string_view name, std::string_view value) {
    AppendOrDrop(fields_, HeaderField{std::string(name), std::string(value)});
}

std::size_t HeaderList::Find(std::string_view name) const {
    return FindFirst(fields_, [&](const std::string& other) { return other == name; });
}

std::size_t HeaderList::FindIgnoreCase(std::string_view name) const {
    return FindFirst(fields_, [&](const std::string& other) {
        return EqualIgnoreCase(std::string_view(other), name);
    });
}

void HeaderList::Remove(std::size_t index) {
    fields_.erase(fields_.begin() + static_cast<std::ptrdiff_t>(index));
}

}  // namespace quorvane
