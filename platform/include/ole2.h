// COM and Automation as a whole.
#pragma once

#include "objbase.h"
#include "objidl.h"
#include "oleauto.h"
