// The D-Bus interface through which other programs perform intents.
#pragma once

#include "platform/linux/bus/bus_object.h"

namespace kivo::linux_platform::intents_interface {

inline constexpr BusObject object{"app.kivo.expenses.Intents", "/app/kivo/expenses/Intents",
                                  "app.kivo.Intents1"};

inline constexpr const char* perform = "Perform";
inline constexpr const char* catalog = "Catalog";

// The errors of a call that performs nothing.
inline constexpr const char* unknownIntent = "app.kivo.Intents1.Error.UnknownIntent";
inline constexpr const char* unknownParameter = "app.kivo.Intents1.Error.UnknownParameter";
inline constexpr const char* missingParameter = "app.kivo.Intents1.Error.MissingParameter";
inline constexpr const char* invalidParameter = "app.kivo.Intents1.Error.InvalidParameter";

}  // namespace kivo::linux_platform::intents_interface
