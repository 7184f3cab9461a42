#include "fuzz/Fuzz.h"

#include <QNetworkReply>

#include "support/transferservice/LocalCopy.h"
#include "support/transferservice/ResponseHead.h"

namespace {

/// A reply with the headers of @p lines, the first of which is the status.
struct Reply : QNetworkReply
{
    explicit Reply(const QByteArray &text)
    {
        const QList<QByteArray> lines = text.split('\n');
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute, lines.first().toInt());
        for (const QByteArray &line : lines.mid(1)) {
            const int colon = line.indexOf(':');
            setRawHeader(line.left(colon), line.mid(colon + 1).trimmed());
        }
    }
    void abort() override {}
    qint64 readData(char *, qint64) override { return -1; }
};

QByteArray stateFile()
{
    return fuzz::tree().section("file.state=", 1).section('\n', 0, 0).toLatin1();
}

void readState(const QByteArray &input)
{
    fuzz::putFile("file", "content");
    fuzz::putFile("file.part", "cont");
    fuzz::putFile("file.state", input);
    LocalCopy copy(fuzz::path("file"), QUrl("http://a/b"));
    fuzz::require(copy.partBytes() == 0 || copy.partBytes() == 4, "a part is what is on disk");
    fuzz::require(!copy.hasFile() || copy.fileRecord().totalBytes < 0 ||
                      copy.fileRecord().totalBytes == 7,
                  "a file is whole");
    copy.expectedBytes();

    const QString state = fuzz::path("file.state");
    fuzz::require(writeDownloadState(state, readDownloadState(state)), "a state can be written");
    const QByteArray written = stateFile();
    fuzz::require(writeDownloadState(state, readDownloadState(state)) && stateFile() == written,
                  "a state is read back as written");
}

void readHead(const QByteArray &input)
{
    const Reply reply(input);
    const ResponseHead head = readResponseHead(reply);
    hasFinalHead(reply);
    fuzz::require(head.firstByte >= -1, "a part begins in the file");
    fuzz::require(head.record.totalBytes >= -1, "a length is none or at least 0");
    fuzz::require(!head.retryAfter || head.retryAfter->count() >= 0, "no pause is negative");
}

} // namespace

/// The side files of downloads, and the heads of answers.
void fuzz::takeInput(const QByteArray &input)
{
    if (input.startsWith('{'))
        readState(input);
    else
        readHead(input);
}
