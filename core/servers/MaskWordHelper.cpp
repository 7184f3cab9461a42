#include "core/servers/MaskWordHelper.h"

#include <optional>

#include <QCoreApplication>
#include <QStringBuilder>
#include <QTextCodec>

#include "base/LazySingleton.h"
#include "core/foundation/FSH.h"
#include "core/servers/WordMask.h"
#include "support/coresupport/QTDes.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace {

const QLatin1String lineEnd("\r\n");

} // namespace

MaskWordHelper::MaskWordHelper() : m_mask(std::make_unique<WordMask>())
{
    init();
}

MaskWordHelper::~MaskWordHelper()
{
    FilePersistent::Save();
}

MaskWordHelper *MaskWordHelper::GetInstance()
{
    return LazySingleton<MaskWordHelper>::get();
}

void MaskWordHelper::init()
{
    SetSavePathFile(FSH::localAppDataPath() % QLatin1String("/FilterSt.ini"));
    readMaskWordToMemory();
}

QString MaskWordHelper::getDefaultPathFile()
{
    return QCoreApplication::applicationDirPath() % QLatin1String("/ComConfig/striCtn.ini");
}

void MaskWordHelper::readMaskWordToMemory()
{
    const std::optional<QByteArray> data = FS::readFile(getDefaultPathFile());
    if (data && !data->isEmpty() && readInstalledWords(*data))
        return;
    if (!data)
        Log::warning(QStringLiteral("open mask word file failed"));
    else if (data->isEmpty())
        Log::warning(QStringLiteral("read mask word cache is empty"));
    else
        Log::warning(QStringLiteral("mask word file is damaged"));
    Load();
}

/// False if the file is damaged. The cipher notices that at the end only; anywhere else the bytes
/// are hardly text any more.
bool MaskWordHelper::readInstalledWords(const QByteArray &data)
{
    QByteArray plain;
    if (!QTDes::DecryptByteArray(data, plain))
        return false;
    QTextCodec::ConverterState state;
    const QTextCodec *utf8 = QTextCodec::codecForName("UTF-8");
    const QString text = utf8->toUnicode(plain.constData(), plain.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return false;
    setWords(text);
    return true;
}

void MaskWordHelper::setWords(const QString &text)
{
    const QStringList words = text.split(lineEnd);
    if (words == m_words)
        return;
    m_words = words;
    m_mask = std::make_unique<WordMask>(words);
}

bool MaskWordHelper::ParseData(const QByteArray &data)
{
    setWords(QString::fromUtf8(data));
    return true;
}

// The empty word behind the last line end is none: written, it would make the file grow each time.
bool MaskWordHelper::BuildData(QByteArray &out)
{
    QStringList words = m_words;
    if (!words.isEmpty() && words.last().isEmpty())
        words.removeLast();
    for (const QString &word : qAsConst(words))
        out += QString(word % lineEnd).toUtf8();
    return true;
}

QString MaskWordHelper::stringMask(const QString &text) const
{
    return m_mask->masked(text);
}
