// Declarations that the headers and identifier files made from interface definitions start with.
#pragma once

#include "rpc.h"

#define interface struct
#define MIDL_INTERFACE(x) struct
#define BEGIN_INTERFACE
#define END_INTERFACE
#define CONST_VTBL const
