#pragma once

#include <memory>

#include <QObject>
#include <QStringList>

#include "base/RivetCoreExport.h"
#include "support/coresupport/FilePersistent.h"

class WordMask;
template <typename Type>
class LazySingleton;

/// Hides the words of a list in texts. The list comes with the installation; where that can't be
/// read, the copy counts that an earlier process left in the local data directory.
///
/// A singleton until the at-exit manager runs, when it writes that copy. It does not change after
/// it is made, so stringMask() may be called from any thread.
class RIVETCORE_EXPORT MaskWordHelper : public QObject, public FilePersistent
{
    Q_OBJECT
public:
    ~MaskWordHelper() override;

    static MaskWordHelper *GetInstance();

    /// @p text with an asterisk in the place of each character of a word of the list. The words are
    /// taken in the order of the list, with case, also inside other words.
    QString stringMask(const QString &text) const;

protected:
    bool BuildData(QByteArray &out) override;
    bool ParseData(const QByteArray &data) override;

private:
    friend class LazySingleton<MaskWordHelper>;
    MaskWordHelper();

    void init();
    void readMaskWordToMemory();
    static QString getDefaultPathFile();
    bool readInstalledWords(const QByteArray &data);
    void setWords(const QString &text);

    QStringList m_words;
    std::unique_ptr<const WordMask> m_mask;
};
