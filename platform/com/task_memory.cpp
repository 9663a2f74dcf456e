#include <objbase.h>

#include <cstdlib>

LPVOID CoTaskMemAlloc(SIZE_T size) {
    return std::malloc(size);
}

LPVOID CoTaskMemRealloc(LPVOID block, SIZE_T size) {
    if (block && size == 0) {
        std::free(block);
        return nullptr;
    }
    return std::realloc(block, size);
}

void CoTaskMemFree(LPVOID block) {
    std::free(block);
}
