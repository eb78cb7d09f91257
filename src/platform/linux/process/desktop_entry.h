// The name of the application's desktop file.
#pragma once

namespace kivo::linux_platform {

/// Without the extension. Names of the application's icons begin with it.
inline constexpr const char* desktopEntry = "app.kivo.expenses";

}  // namespace kivo::linux_platform
