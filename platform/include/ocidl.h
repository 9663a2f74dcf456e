// Interfaces of controls and their containers.
#pragma once

#include "ole2.h"
