// The page "Add": a payment by the extension, or one in cash by hand.
#pragma once

namespace kivo::app {

class AppWindow;

/// Shows the fields of a new payment on a page of its own.
void openAddPage(AppWindow& window);

}  // namespace kivo::app
