#include "core/launch/ArgumentTemplate.h"

#include <QFile>

namespace ArgumentTemplate {

std::optional<QStringList> read(const QString &path, const QVector<Replacement> &replacements)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QStringList arguments;
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        if (line.isEmpty())
            break; // the file has become shorter, or can't be read on
        line.replace('\r', QByteArray()).replace('\n', QByteArray());
        for (const Replacement &replacement : replacements)
            line.replace(replacement.placeholder, replacement.value);
        arguments << QString::fromUtf8(line);
    }
    return file.error() == QFileDevice::NoError ? std::optional<QStringList>(arguments)
                                                : std::nullopt;
}

} // namespace ArgumentTemplate
