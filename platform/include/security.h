// Security packages.
#pragma once

#include "sspi.h"
