// Sinks whose event interface is not the one that they give out as IDispatch.
#pragma once

#include <windows.h>
#include <ole2.h>

#include "automation/com_ptr.h"

namespace quorvane {

// An object whose IDispatch is `events`, the event interface of a sink. The global interface table
// carries IDispatch alone between apartments without a registered description, and a sink that has
// a dual interface of its own beside its event interface would be called through the wrong one. It
// has no interface of the sink besides: those of a sink in another apartment are its proxy's, and
// the proxy's way to be carried leads to the sink's own IDispatch. Throws std::bad_alloc.
ComPtr<IDispatch> ForwardEvents(ComPtr<IDispatch> events);

}  // namespace quorvane
