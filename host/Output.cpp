#include "host/Output.h"

#include <cstdio>

#include <QJsonDocument>
#include <QLocale>
#include <QRegularExpression>

#include "host/Columns.h"
#include "host/Text.h"
#include "platform/Terminal.h"

namespace {

constexpr int shortestBar = 8;
constexpr int longestBar = 24;

void print(const QString &text, FILE *stream = stdout)
{
    std::fputs(qUtf8Printable(text), stream);
    std::fflush(stream);
}

void printJson(const QJsonObject &object)
{
    print(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) %
          QLatin1Char('\n'));
}

/// Status texts are made for a window: they hold a little markup.
QString withoutMarkup(const QString &text)
{
    QString plain = text;
    plain.replace(QLatin1String("<br/>"), QLatin1String(", "));
    return plain.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
}

QString sizeText(quint64 bytes)
{
    return QLocale::c().formattedDataSize(qint64(bytes), 1);
}

QString timeText(quint64 seconds)
{
    return seconds < 60 ? Text::tr("%1 s").arg(seconds)
                        : Text::tr("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
}

} // namespace

Output::Output(Form form)
    : m_form(form), m_isTerminal(form == Form::Text && platform::Terminal::isInteractive())
{
}

void Output::line(const QString &text, const QJsonObject &object) const
{
    if (m_form == Form::Json)
        printJson(object);
    else
        print(text % QLatin1Char('\n'));
}

void Output::table(const QStringList &head, const QList<QStringList> &rows) const
{
    QList<int> widths;
    for (int column = 0; column < head.size(); ++column) {
        int width = Columns::of(head[column]);
        for (const QStringList &row : rows)
            width = qMax(width, Columns::of(row.value(column)));
        widths << width;
    }
    const auto printRow = [&](const QStringList &row) {
        QString text;
        for (int column = 0; column < head.size(); ++column)
            text += Columns::filledUp(row.value(column), widths[column] + 2);
        print(Columns::withoutEnd(text) % QLatin1Char('\n'));
    };
    if (m_form == Form::Text)
        printRow(head);
    for (const QStringList &row : rows) {
        QJsonObject object;
        for (int column = 0; column < head.size(); ++column)
            object.insert(head[column], row.value(column));
        if (m_form == Form::Json)
            printJson(object);
        else
            printRow(row);
    }
}

void Output::error(const QString &text) const
{
    if (m_form == Form::Json)
        printJson(
            {{QStringLiteral("event"), QStringLiteral("error")}, {QStringLiteral("text"), text}});
    else
        print(QLatin1String("rivet: ") % text % QLatin1Char('\n'), stderr);
}

void Output::stage(const QString &name)
{
    if (name == m_stage)
        return;
    m_stage = name;
    if (m_form == Form::Json)
        printJson(
            {{QStringLiteral("event"), QStringLiteral("stage")}, {QStringLiteral("text"), name}});
    else if (m_isTerminal)
        redraw();
    else
        print(name % QLatin1Char('\n'));
}

void Output::status(const QString &text)
{
    const QString plain = withoutMarkup(text);
    if (m_isTerminal || plain == m_lastStatus)
        return;
    m_lastStatus = plain;
    if (m_form == Form::Json)
        printJson(
            {{QStringLiteral("event"), QStringLiteral("status")}, {QStringLiteral("text"), plain}});
    else
        print(QLatin1String("  ") % plain % QLatin1Char('\n'));
}

void Output::notice(const QString &text)
{
    endProgress();
    line(text,
         {{QStringLiteral("event"), QStringLiteral("status")}, {QStringLiteral("text"), text}});
}

void Output::progress(int percent, const Transfer &transfer)
{
    const bool isNews = percent != m_percent;
    m_percent = percent;
    m_transfer = transfer;
    if (m_isTerminal) {
        redraw();
    } else if (m_form == Form::Json && isNews) {
        printJson({{QStringLiteral("event"), QStringLiteral("progress")},
                   {QStringLiteral("percent"), percent},
                   {QStringLiteral("bytesPerSecond"), double(transfer.bytesPerSecond)},
                   {QStringLiteral("doneBytes"), double(transfer.doneBytes)},
                   {QStringLiteral("totalBytes"), double(transfer.totalBytes)}});
    }
}

void Output::endProgress()
{
    if (m_isLineOpen)
        print(QStringLiteral("\n"));
    m_isLineOpen = false;
}

QString Output::transferText(const Transfer &transfer)
{
    if (transfer.totalBytes == 0)
        return {};
    const QString done =
        Text::tr("%1 of %2").arg(sizeText(transfer.doneBytes), sizeText(transfer.totalBytes));
    if (transfer.bytesPerSecond == 0 || transfer.doneBytes >= transfer.totalBytes)
        return done;
    const quint64 left = transfer.totalBytes - transfer.doneBytes;
    return Text::tr("%1, %2/s, %3 left")
        .arg(done, sizeText(transfer.bytesPerSecond), timeText(left / transfer.bytesPerSecond + 1));
}

/// Where the line is short, the name of the stage gives way to the figures.
void Output::redraw()
{
    constexpr int spaceOfTexts = 71;
    const int width = qMax(20, platform::Terminal::columns() - 1);
    const int barWidth = qBound(shortestBar, width - spaceOfTexts, longestBar);
    const int filled = qBound(0, m_percent, 100) * barWidth / 100;
    const QString bar =
        QString(filled, QLatin1Char('#')) % QString(barWidth - filled, QLatin1Char('.'));
    const QString head = QStringLiteral("[%1] %2 %  ").arg(bar).arg(qMax(m_percent, 0), 3);
    const QString figures = QLatin1String("  ") % transferText(m_transfer);
    const int room = qMax(0, width - Columns::of(head) - Columns::of(figures));
    const QString text = head % Columns::cutOff(m_stage, room) % figures;
    print(QLatin1Char('\r') % Columns::filledUp(Columns::cutOff(text, width), width));
    m_isLineOpen = true;
}
