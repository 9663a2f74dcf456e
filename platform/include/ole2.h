// COM and Automation as a whole.
#pragma once

#include "objbase.h"
#include "objidl.h"
#include "oleauto.h"
#include "oleidl.h"

#define OLEIVERB_PRIMARY 0
#define OLEIVERB_SHOW (-1)
#define OLEIVERB_HIDE (-3)
#define OLEIVERB_UIACTIVATE (-4)
#define OLEIVERB_INPLACEACTIVATE (-5)
#define OLEIVERB_DISCARDUNDOSTATE (-6)

#ifdef __cplusplus

// Has the object's IViewObject draw its only view. DV_E_NOIVIEWOBJECT for an object without one.
STDAPI OleDraw(IUnknown* object, DWORD aspect, HDC dc, LPCRECT bounds);

// Frees what the medium holds, and makes it empty. Differs from Windows: a medium is always empty
// here, see CreateMetaFileW.
STDAPI_(void) ReleaseStgMedium(STGMEDIUM* medium);

#endif
