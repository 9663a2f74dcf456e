// Sinks whose event interface is not the one that they give out as IDispatch.
#pragma once

#include <windows.h>
#include <ole2.h>

#include "automation/com_ptr.h"

namespace quorvane {

// An object whose IDispatch is the event interface of `sink`. The global interface table carries
// IDispatch alone between apartments without a registered description, and a sink that has a dual
// interface of its own beside its event interface would be called through the wrong one. Other
// interfaces are the sink's. Throws std::bad_alloc.
ComPtr<IDispatch> ForwardEvents(ComPtr<IUnknown> sink, ComPtr<IDispatch> events);

}  // namespace quorvane
