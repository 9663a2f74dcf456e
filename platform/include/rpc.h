// What generated headers expect of the remote procedure call runtime: nothing but basic types.
#pragma once

#include "windows.h"

#define __RPC_FAR
#define __RPC_USER
