// The Windows interfaces that the product uses, apart from COM and sockets.
#pragma once

#include "guiddef.h"
#include "libloaderapi.h"
#include "winbase.h"
#include "windef.h"
#include "winerror.h"
#include "wingdi.h"
#include "winnls.h"
#include "winreg.h"
#include "winuser.h"
