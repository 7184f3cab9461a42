#pragma once

#include <vector>

#include "support/archivekit/ExtractionPlan.h"

namespace archivekit {

/// Places of entries in the archive, which one thread unpacks in a row.
using Batch = std::vector<size_t>;

/// The order in which the files of a zip are taken by @p threads. The large ones come first, the
/// largest at the head, so that no thread ends with a long one alone. The others follow as they
/// lie in the file, for a thread that goes forward only need not open the archive anew; in
/// batches of one folder, for the system makes files of one folder one after another.
std::vector<Batch> batchesOf(const std::vector<EntryHeader> &entries, qint64 totalBytes,
                             size_t threads);

} // namespace archivekit
