#pragma once

#include <string>

#include "bench/workloads.h"

namespace quorvane::bench {

// The workload as one line of JSON, with the bytes of attachments in hexadecimal digits.
std::string Describe(const Workload& workload);

}  // namespace quorvane::bench
