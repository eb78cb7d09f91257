// Opens the shared store for the commands of kivo-phone.
#pragma once

#include "platform/foundation/user_defaults.h"
#include "store/shared_store.h"

namespace kivo {

/// Opens the shared store of the app group. Throws ReportedFailure, after one line on standard
/// error, when it cannot be opened.
SharedStore openStore();

/// Opens the same store as keys and values of any type. Throws as `openStore` does.
platform::UserDefaults openDefaults();

}  // namespace kivo
