// Growing the lists of a message.
#pragma once

#include <limits>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace quorvane {

// Appends the element, or silently drops it when the list can't grow: there is no memory, or its
// bytes would not fit a signed 32-bit count.
template <class Element>
void AppendOrDrop(std::vector<Element>& list, Element element) noexcept {
    constexpr auto kLimit =
        static_cast<std::size_t>(std::numeric_limits<int>::max()) / sizeof(Element);
    if (list.size() >= kLimit) return;
    try {
        list.push_back(std::move(element));
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace quorvane
