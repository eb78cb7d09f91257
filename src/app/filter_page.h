// The categories and accounts by which the list of payments can be narrowed.
#pragma once

#include "book/book.h"

namespace kivo::app {

class AppWindow;

/// Shows them on a page of their own. One that is chosen is added to `filter`, and its payments are
/// shown.
void openFilterPage(AppWindow& window, const book::EntryFilter& filter);

}  // namespace kivo::app
