// Drawing into bitmaps.
#pragma once

#include "windef.h"

#ifdef __cplusplus

#define TECHNOLOGY 2
#define DT_RASDISPLAY 1
#define DT_METAFILE 5
#define MM_TEXT 1
#define MM_ANISOTROPIC 8
#define TA_CENTER 6
#define TA_BASELINE 24
#define BI_RGB 0
#define DIB_RGB_COLORS 0
#define CF_METAFILEPICT 3

typedef struct tagBITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;  // negative: the first line is the top one
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
} BITMAPINFOHEADER;

typedef struct tagBITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
} BITMAPINFO;

typedef struct tagMETAFILEPICT {
    LONG mm;
    LONG xExt;
    LONG yExt;
    HMETAFILE hMF;
} METAFILEPICT;

extern "C" {

// A device context that draws nowhere until a bitmap is selected into it; `like` is not looked at.
// Null when there is no memory.
HDC WINAPI CreateCompatibleDC(HDC like);
BOOL WINAPI DeleteDC(HDC dc);

// A bitmap whose pixels the caller reads at *bits: 32 bits each, blue in the lowest byte, the
// highest not used. Null when there is no memory, and, which differs from Windows, for a bitmap of
// another kind or with the last line first.
HBITMAP WINAPI CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits,
                                HANDLE section, DWORD offset);
BOOL WINAPI DeleteObject(HGDIOBJ object);
// Bitmaps only. Returns the one selected before, null for the first.
HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object);

// Puts the context's state aside and returns its number; RestoreDC goes back to it.
int WINAPI SaveDC(HDC dc);
BOOL WINAPI RestoreDC(HDC dc, int saved);

// Nothing outside of the rectangle is drawn from now on. The kind of the region that is left.
int WINAPI IntersectClipRect(HDC dc, int left, int top, int right, int bottom);

// White with a black edge of one pixel.
BOOL WINAPI Rectangle(HDC dc, int left, int top, int right, int bottom);
// The point of a text to which TextOutW puts it. Returns the alignment before. Differs from
// Windows: 0, the upper left corner, or TA_CENTER | TA_BASELINE.
UINT WINAPI SetTextAlign(HDC dc, UINT alignment);
// Black letters. Differs from Windows: what is behind them stays.
BOOL WINAPI TextOutW(HDC dc, int x, int y, LPCWSTR text, int length);
BOOL WINAPI DrawIcon(HDC dc, int x, int y, HICON icon);

// Logical units are pixels here: no context maps them in another way, and these change nothing.
int WINAPI GetDeviceCaps(HDC dc, int index);
BOOL WINAPI LPtoDP(HDC dc, LPPOINT points, int count);
int WINAPI SetMapMode(HDC dc, int mode);
BOOL WINAPI SetWindowOrgEx(HDC dc, int x, int y, LPPOINT before);
BOOL WINAPI SetWindowExtEx(HDC dc, int x, int y, LPSIZE before);
BOOL WINAPI SetViewportOrgEx(HDC dc, int x, int y, LPPOINT before);

// There are no metafiles: null, with the last error ERROR_CALL_NOT_IMPLEMENTED.
HDC WINAPI CreateMetaFileW(LPCWSTR file);
HMETAFILE WINAPI CloseMetaFile(HDC dc);

// Regions are for windows, which there are none of: null.
HRGN WINAPI CreateRectRgnIndirect(const RECT* rect);

}  // extern "C"

#endif
