// By which name the desktop knows the application. Opens nothing.
#pragma once

namespace kivo::linux_platform {

/// The name of the desktop file without its ending; icons of the application begin with it.
inline constexpr const char* desktopEntry = "app.kivo.expenses";

}  // namespace kivo::linux_platform
