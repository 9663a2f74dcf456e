#include "tests/server/marshalling/remote.h"

const bool quorvane::testing::kInterfacesCross = false;
