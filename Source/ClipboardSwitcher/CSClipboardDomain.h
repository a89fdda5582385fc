// The named clipboards as the macro domain sees them: they start and stop with it. The clipboard store installs
// what that means; without one nothing happens. Main thread.
#pragma once

#include <functional>

namespace CSClipboardDomain
{
void Install( std::function<void()> inStart, std::function<void()> inStop );
void Start();
void Stop();
} // namespace CSClipboardDomain
