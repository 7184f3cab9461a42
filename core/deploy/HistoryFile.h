#pragma once

#include <optional>

#include <QByteArray>
#include <QHash>
#include <QString>

#include "core/deploy/IDeploymentHistory.h"

/// The file of DepHistoryFlatFile: an array of folders with their records, in Qt's binary form of
/// JSON; docs/files.md tells the keys. Any thread.
namespace HistoryFile {

/// By folder and resource.
template <typename Record>
using TableOf = QHash<QString, QHash<quint64, Record>>;

/// One record as it stands in the file; empty if it holds a file name that the form can't hold.
/// Such a record must not get into the file: read back, it would claim other files than its own.
QByteArray buildRecord(quint64 resKey, const DeployRecordItem &item);

/// The whole file from records that buildRecord() made; costs little more than copying them.
/// Nothing if they are more than the form can hold, which is 128 MiB.
[[nodiscard]] std::optional<QByteArray> build(const TableOf<QByteArray> &records);

/// What a file holds, without what is gone from the disk or damaged; empty if @p data is not of
/// this form.
TableOf<DeployRecordItem> parse(const QByteArray &data);

} // namespace HistoryFile
