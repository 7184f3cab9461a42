#include "support/coresupport/CCommonFunction.h"

#include <algorithm>

#include "platform/Memory.h"
#include "support/coresupport/VersionSet.h"
#include "support/jsonfskit/FS.h"

bool CCommonFunction::FilterJsonData(QByteArray &data)
{
    static const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");

    data.replace(QByteArrayLiteral("\0"), QByteArray());
    std::replace_if(
        data.begin(), data.end(), [](char c) { return static_cast<uchar>(c) < 0x20; }, ' ');
    data = data.trimmed();
    while (data.startsWith(byteOrderMark))
        data = data.mid(byteOrderMark.size()).trimmed();
    return !data.isEmpty();
}

QByteArray CCommonFunction::GetMidByteArray(const QString &begin, const QString &end,
                                            const QByteArray &data)
{
    const QByteArray open = begin.toUtf8();
    const int from = data.indexOf(open);
    if (from < 0)
        return {};
    const int start = from + open.size();
    const int stop = data.indexOf(end.toUtf8(), start);
    return stop < 0 ? QByteArray() : data.mid(start, stop - start);
}

QString CCommonFunction::GetDefaultJVMParam(bool cautious)
{
    return cautious ? QStringLiteral("-Xms256m -Xmx1024m")
                    : QStringLiteral("-Xms512m -Xmx1024m -XX:+UseG1GC -XX:MaxGCPauseMillis=50 "
                                     "-XX:-OmitStackTraceInFastThrow");
}

bool CCommonFunction::IsThisVerSetInOtherVerSet(const QString &these, const QString &others)
{
    const VersionSet inner(these);
    const VersionSet outer(others);
    return inner.isWithin(outer);
}

bool CCommonFunction::ClearFolderButExclude(const QString &folder, const QStringList &exclude,
                                            bool wholeTree)
{
    return bool(FS::clearFolder(
        folder, exclude, wholeTree ? FS::ClearScope::WholeTree : FS::ClearScope::DirectFiles));
}

bool CCommonFunction::DeleteSingleFile(const QString &path)
{
    return bool(FS::removeFile(path));
}

void CCommonFunction::OptimizeSystemMemory()
{
    platform::trimMemory();
}
