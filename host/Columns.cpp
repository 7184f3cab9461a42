#include "host/Columns.h"

#include <QStringList>
#include <QTextBoundaryFinder>

namespace {

int columnsOf(QChar character)
{
    const ushort code = character.unicode();
    const bool isWide = (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
                        (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
                        (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
                        (code >= 0xFFE0 && code <= 0xFFE6);
    return isWide ? 2 : 1;
}

} // namespace

int Columns::of(const QString &text)
{
    int columns = 0;
    for (const QChar character : text)
        columns += columnsOf(character);
    return columns;
}

QString Columns::filledUp(const QString &text, int columns)
{
    return text % QString(qMax(0, columns - of(text)), QLatin1Char(' '));
}

QString Columns::cutOff(const QString &text, int columns)
{
    int length = 0;
    while (length < text.size() && columnsOf(text[length]) <= columns)
        columns -= columnsOf(text[length++]);
    return text.left(length);
}

QString Columns::withoutEnd(QString text)
{
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text;
}

QString Columns::wrapped(const QString &text, int columns, int indent)
{
    const QString blanks(indent, QLatin1Char(' '));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Line, text);
    QStringList lines;
    QString line;
    int begin = 0;
    for (int end = finder.toNextBoundary(); end > 0; end = finder.toNextBoundary()) {
        const QString piece = text.mid(begin, end - begin);
        if (!line.trimmed().isEmpty() && of(withoutEnd(line % piece)) > columns) {
            lines << withoutEnd(line);
            line = blanks;
        }
        line += piece;
        begin = end;
    }
    lines << withoutEnd(line);
    return lines.join(QLatin1Char('\n'));
}
