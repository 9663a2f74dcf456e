// Libraries that compose the same message. Each builds it anew from the workload, as a program that
// sends it would, and delivers the whole text.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "bench/workloads.h"

namespace quorvane::bench {

class Contender {
public:
    virtual ~Contender() = default;
    virtual std::string Name() const = 0;
    // Takes the workload in the library's own kinds of string; not measured.
    virtual void Prepare(const Workload& workload) = 0;
    // The text is in memory allocated by this call and stays until the next one.
    virtual std::string_view Compose() = 0;
};

std::unique_ptr<Contender> MakeQuorvaneContender();
std::unique_ptr<Contender> MakeCurlContender();
std::unique_ptr<Contender> MakeGmimeContender();

}  // namespace quorvane::bench
