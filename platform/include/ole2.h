// COM and Automation as a whole.
#pragma once

#include "objbase.h"
#include "oleauto.h"
