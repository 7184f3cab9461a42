#include "platform/ProcessArguments.h"

namespace platform {

namespace {

/// One argument in the form that CommandLineToArgvW and the C run times take apart: backslashes
/// count only in front of a quotation mark, where each stands twice.
QString quoted(const QString &argument)
{
    QString text(QLatin1Char('"'));
    int backslashes = 0;
    for (const QChar c : argument) {
        if (c == QLatin1Char('"'))
            text += QString(backslashes + 1, QLatin1Char('\\'));
        backslashes = c == QLatin1Char('\\') ? backslashes + 1 : 0;
        text += c;
    }
    return text + QString(backslashes, QLatin1Char('\\')) + QLatin1Char('"');
}

} // namespace

void setProcessArguments(QProcess &process, const QStringList &arguments)
{
    QStringList line;
    for (const QString &argument : arguments)
        line << quoted(argument);
    process.setNativeArguments(line.join(QLatin1Char(' ')));
}

} // namespace platform
