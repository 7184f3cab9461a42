#pragma once

#include <memory>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include "support/transferservice/LocalCopy.h"
#include "support/transferservice/RetrySchedule.h"

class FileDigest;
class QNetworkAccessManager;
class ReplyStream;
class TransferPlace;
struct ResponseHead;

/// One run of a download, from its start to its end, with all the tries in between.
///
/// Reports by signals from the event loop; receivers may delete it. Deleting it ends the run
/// silently.
class FileTransfer : public QObject
{
    Q_OBJECT
public:
    FileTransfer(const QUrl &url, const QString &filePath,
                 std::shared_ptr<QNetworkAccessManager> manager, const TransferTiming &timing);
    ~FileTransfer() override;

    void begin();
    /// Writes down what has arrived and not been written yet, before an early end.
    void keepWhatArrived();

    qint64 receivedBytes() const;
    /// 0 while unknown.
    qint64 totalBytes() const;
    /// Bytes that came over the network in this run, also those that were thrown away later.
    qint64 arrivedBytes() const { return m_arrivedBytes; }

Q_SIGNALS:
    void receiving();
    void sizesChanged();
    /// The last signal.
    void ended(bool isComplete);

private:
    void queueForRequest();
    void sendRequest();
    void onHead();
    void onBody(const ResponseHead &head);
    bool fitsPart(const ResponseHead &head) const;
    void onPiece(const char *data, qint64 size);
    void onEnded();
    void dropAndRetry();
    void retry(const ResponseHead &head);
    void finishPart();
    void syncPart();
    void completePart();
    void endExchange();
    void end(bool isComplete);
    void giveUp();

    const QUrl m_url;
    const std::shared_ptr<QNetworkAccessManager> m_manager;
    const TransferTiming m_timing;
    RetrySchedule m_schedule;
    LocalCopy m_copy;
    QTimer m_pause;
    std::unique_ptr<TransferPlace> m_place; ///< while an exchange runs or waits for its turn
    std::unique_ptr<ReplyStream> m_stream;  ///< while an exchange runs
    std::unique_ptr<FileDigest> m_digest;   ///< while the part is compared
    QElapsedTimer m_held;                   ///< since the part could not be renamed
    bool m_takesBody = false;               ///< the body of this exchange goes to the part
    qint64 m_arrivedBytes = 0;
};
