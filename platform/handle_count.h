#pragma once

// The layer's own count of open handles, which openHandles() of platform/host.h shows to leak checks.  Every
// family calls handleOpened() when it hands one out and handleClosed() when it takes one back.

namespace tarn {

void handleOpened();
void handleClosed();

}  // namespace tarn
