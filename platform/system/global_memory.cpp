// Blocks of memory behind a handle, which is their address.
#include <winbase.h>

#include <cstdlib>

HGLOBAL GlobalAlloc(UINT, SIZE_T size) {
    return std::malloc(size);
}

LPVOID GlobalLock(HGLOBAL block) {
    return block;
}

BOOL GlobalUnlock(HGLOBAL) {
    return FALSE;
}

HGLOBAL GlobalFree(HGLOBAL block) {
    std::free(block);
    return nullptr;
}
