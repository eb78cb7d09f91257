// The rows of a long list of payments as a GListModel. Holds ids and days, and reads no book.
#pragma once

#include <vector>

#include <gio/gio.h>

#include "book/book.h"

namespace kivo::app {

struct PaymentPlaces;

/// Returns an empty list; a reference is the caller's. Its items are GtkStringObjects with the ids.
PaymentPlaces* newPaymentPlaces();
/// Replaces all rows.
void setPlaces(PaymentPlaces* places, std::vector<book::EntryPlace> rows);
const std::vector<book::EntryPlace>& rowsOf(const PaymentPlaces* places);

}  // namespace kivo::app
