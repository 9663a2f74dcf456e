// Identifiers of the library's resources; the resource compiler reads this file too.
#pragma once

#include "component/resource.h"

#define IDS_PROJECT_NAME 100
