#include "fuzz/Fuzz.h"

#include <QDir>
#include <QJsonDocument>

#include "core/deploy/DepHistoryFlatFile.h"
#include "core/deploy/HistoryFile.h"

// Qt's binary form is deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

/// The records that a history reads out of the file, which it writes anew at its end; without those
/// that it can't write.
HistoryFile::TableOf<QHash<QString, QString>> recordsIn(const QString &file)
{
    HistoryFile::TableOf<QHash<QString, QString>> records;
    DepHistoryFlatFile history;
    history.init(file);
    for (const char *folder : {".", "sub"}) {
        for (const quint64 key : history.getDeployResInDeployFolder(folder)) {
            DeployRecordItem item;
            const bool isThere = history.queryRecord(folder, key, item);
            fuzz::require(isThere && key != 0 && !item.deployFiles.isEmpty(), "a record is usable");
            if (!HistoryFile::buildRecord(key, item).isEmpty())
                records[folder][key] = item.deployFiles;
        }
    }
    return records;
}

} // namespace

/// The history of deployments.
void fuzz::takeInput(const QByteArray &input)
{
    // Records of what is not there are passed over.
    for (const char *name : {"a", "b ", "sub/a"})
        putFile(name, "x");
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder());
    const QJsonDocument text = QJsonDocument::fromJson(input);
    putFile("history", text.isNull() ? input : text.toBinaryData());
    const auto records = recordsIn("history");
    require(recordsIn("history") == records, "a history is read back as written");
    QDir::setCurrent(before);
}
