#include "service/Files.h"

#include <optional>
#include <utility>

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

namespace {

const QString httpDate = QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'");

struct Validators
{
    QByteArray etag;
    QByteArray lastModified;
    QDateTime modified; ///< in whole seconds, UTC
};

Validators validatorsOf(const QFile &file)
{
    const QDateTime time = file.fileTime(QFileDevice::FileModificationTime).toUTC();
    Validators validators;
    validators.etag = '"' + QByteArray::number(file.size(), 16) + '-' +
                      QByteArray::number(time.toMSecsSinceEpoch(), 16) + '"';
    validators.modified = QDateTime::fromSecsSinceEpoch(time.toSecsSinceEpoch(), Qt::UTC);
    validators.lastModified = QLocale::c().toString(validators.modified, httpDate).toLatin1();
    return validators;
}

QDateTime parsedDate(const QByteArray &text)
{
    QDateTime date = QLocale::c().toDateTime(QString::fromLatin1(text), httpDate);
    date.setTimeSpec(Qt::UTC);
    return date;
}

bool isUnchanged(const Call &call, const Validators &validators)
{
    if (call.headers.contains("if-none-match")) {
        for (QByteArray tag : call.headers.value("if-none-match").split(',')) {
            tag = tag.trimmed();
            if (tag == "*" || tag == validators.etag || tag == "W/" + validators.etag)
                return true;
        }
        return false;
    }
    const QDateTime since = parsedDate(call.headers.value("if-modified-since"));
    return since.isValid() && validators.modified <= since;
}

/// Whether a range may be taken from the file that the client has begun to load.
bool isSameFile(const Call &call, const Validators &validators)
{
    const QByteArray condition = call.headers.value("if-range");
    return condition.isEmpty() || condition == validators.etag ||
           condition == validators.lastModified;
}

struct Range
{
    qint64 first = 0;
    qint64 last = -1; ///< before the first where the range lies outside of the file
};

/// The one range that is asked for. Nothing for none, several, or one that can not be read: these
/// get the whole file.
std::optional<Range> rangeOf(const QByteArray &header, qint64 size)
{
    const QByteArray unit = QByteArrayLiteral("bytes=");
    const QList<QByteArray> ends = header.mid(unit.size()).trimmed().split('-');
    if (!header.startsWith(unit) || ends.size() != 2)
        return {};
    bool hasFirst = false;
    bool hasLast = false;
    const qint64 first = ends[0].toLongLong(&hasFirst);
    const qint64 last = ends[1].toLongLong(&hasLast);
    if (hasFirst && (hasLast ? last >= first : ends[1].isEmpty()))
        return first >= size ? Range() : Range{first, hasLast ? qMin(last, size - 1) : size - 1};
    if (!ends[0].isEmpty() || !hasLast)
        return {};
    return last == 0 ? Range() : Range{qMax<qint64>(0, size - last), size - 1};
}

} // namespace

Files::Files(QString folder) : m_folder(std::move(folder)) {}

std::shared_ptr<QFile> Files::open(const QString &name) const
{
    const QString root = QFileInfo(m_folder).canonicalFilePath();
    const QFileInfo info(m_folder % QLatin1Char('/') % name);
    const QString path = info.canonicalFilePath();
    if (root.isEmpty() || !info.isFile() || !path.startsWith(root % QLatin1Char('/')))
        return nullptr;
    auto file = std::make_shared<QFile>(path);
    return file->open(QIODevice::ReadOnly) ? file : nullptr;
}

Answer Files::get(const QString &name, const Call &call) const
{
    const std::shared_ptr<QFile> file = open(name);
    if (!file) {
        return Answer::json({{QStringLiteral("code"), Refusal::UnknownResource},
                             {QStringLiteral("msg"), QString(QLatin1String("no file ") % name)}},
                            404);
    }
    const Validators validators = validatorsOf(*file);
    Answer answer;
    answer.contentType = QByteArrayLiteral("application/octet-stream");
    answer.headers = {{"ETag", validators.etag},
                      {"Last-Modified", validators.lastModified},
                      {"Accept-Ranges", "bytes"}};
    if (isUnchanged(call, validators)) {
        answer.status = 304;
        return answer;
    }
    const qint64 size = file->size();
    std::optional<Range> range;
    if (isSameFile(call, validators))
        range = rangeOf(call.headers.value("range"), size);
    if (range && range->last < range->first) {
        answer.status = 416;
        answer.headers.append({"Content-Range", "bytes */" + QByteArray::number(size)});
        return answer;
    }
    answer.file = file;
    answer.lengthBytes = size;
    if (range) {
        answer.status = 206;
        answer.offset = range->first;
        answer.lengthBytes = range->last - range->first + 1;
        answer.headers.append({"Content-Range", "bytes " + QByteArray::number(range->first) + '-' +
                                                    QByteArray::number(range->last) + '/' +
                                                    QByteArray::number(size)});
    }
    return answer;
}
