// The settings beside the book that a backup holds: currency, templates, senders.
#pragma once

#include "book/book_backup.h"

namespace kivo::ledger::KeptSettings {

/// Reads them as they are, the files byte for byte. Throws Failure, which names the file, when one
/// cannot be read, and ReportedFailure when the shared store cannot be opened.
book::BackedUpSettings read();

/// Writes those that differ, each atomically and durably, in this order: the currency, the
/// templates, the senders. The widget's totals begin at zero in another currency. Throws as `read`,
/// and leaves those that come later as they were.
void write(const book::BackedUpSettings& settings);

}  // namespace kivo::ledger::KeptSettings
