#include <objbase.h>

#include <cstdlib>

LPVOID CoTaskMemAlloc(SIZE_T size) {
    return std::malloc(size);
}

void CoTaskMemFree(LPVOID block) {
    std::free(block);
}
