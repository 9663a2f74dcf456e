#include "model/header_list.h"

#include <functional>

#include "automation/wide_string.h"

namespace quorvane {
namespace {

// Index of the first place of the name.
template <class Places, class Equal>
std::size_t FindFirst(const Places& places, const std::string& texts, std::string_view name,
                      Equal equal) {
    for (const auto& place : places) {
        if (place.nameSize != name.size()) continue;
        const std::string_view other(texts.data() + place.start, place.nameSize);
        if (equal(other, name)) return static_cast<std::size_t>(&place - places.data());
    }
    return HeaderList::npos;
}

}  // namespace

void HeaderList::Reserve(std::size_t count) {
    constexpr std::size_t kUsualSize = 48;  // of a field
    places_.reserve(places_.size() + count);
    texts_.reserve(texts_.size() + count * kUsualSize);
}

std::size_t HeaderList::Find(std::string_view name) const {
    return FindFirst(places_, texts_, name, std::equal_to<>());
}

std::size_t HeaderList::FindIgnoreCase(std::string_view name) const {
    return FindFirst(places_, texts_, name,
                     [](std::string_view a, std::string_view b) { return EqualIgnoreCase(a, b); });
}

void HeaderList::Remove(std::size_t index) {
    const Place gone = places_[index];
    texts_.erase(gone.start, gone.size);
    places_.erase(places_.begin() + static_cast<std::ptrdiff_t>(index));
    for (std::size_t i = index; i < size(); ++i) places_[i].start -= gone.size;
}

}  // namespace quorvane
