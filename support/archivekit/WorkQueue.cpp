#include "support/archivekit/WorkQueue.h"

#include <algorithm>

namespace archivekit {

namespace {

constexpr size_t mostInBatch = 64;
// A walk through the archive from its beginning for each of them must not be felt.
constexpr size_t mostLargePerThread = 4;

QStringRef folderOf(const EntryHeader &entry)
{
    return entry.name.leftRef(entry.name.lastIndexOf(QLatin1Char('/')) + 1);
}

std::vector<size_t> largestOf(const std::vector<EntryHeader> &entries, qint64 leastBytes,
                              size_t most)
{
    std::vector<size_t> large;
    for (size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].type == EntryType::File && entries[i].bytes > leastBytes)
            large.push_back(i);
    }
    std::stable_sort(large.begin(), large.end(), [&entries](size_t a, size_t b) {
        return entries[a].bytes > entries[b].bytes;
    });
    large.resize(std::min(large.size(), most));
    return large;
}

} // namespace

std::vector<Batch> batchesOf(const std::vector<EntryHeader> &entries, qint64 totalBytes,
                             size_t threads)
{
    const qint64 leastLarge = totalBytes / static_cast<qint64>(16 * threads);
    std::vector<Batch> batches;
    std::vector<bool> isTaken(entries.size());
    for (const size_t i : largestOf(entries, leastLarge, mostLargePerThread * threads)) {
        batches.push_back({i});
        isTaken[i] = true;
    }
    qint64 bytes = 0;
    size_t last = entries.size();
    for (size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].type != EntryType::File || isTaken[i])
            continue;
        const bool fits = last < entries.size() && batches.back().size() < mostInBatch &&
                          bytes + entries[i].bytes <= leastLarge &&
                          folderOf(entries[last]) == folderOf(entries[i]);
        if (!fits) {
            batches.emplace_back();
            bytes = 0;
        }
        batches.back().push_back(i);
        bytes += entries[i].bytes;
        last = i;
    }
    return batches;
}

} // namespace archivekit
