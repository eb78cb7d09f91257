// The name of the application's desktop file.
#pragma once

namespace kivo::linux_platform {

/// Without the extension. The application's icon has the same name, and the names of its other
/// icons begin with it.
inline constexpr const char* desktopEntry = "app.kivo.expenses";

}  // namespace kivo::linux_platform
