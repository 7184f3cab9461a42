#pragma once

#include <QObject>
#include <QStringList>

#include "base/RivetCoreExport.h"

template <typename Type>
class LazySingleton;

/// Hints for the host to show.
///
/// A singleton until the at-exit manager runs. It does not change after it is made, so it may be
/// asked from any thread.
class RIVETCORE_EXPORT TipsHelper : public QObject
{
    Q_OBJECT
public:
    ~TipsHelper() override;

    static TipsHelper *GetInstance();

    /// "Tips." and one of the hints, each as likely as the others.
    QString getRandTips() const;

private:
    friend class LazySingleton<TipsHelper>;
    TipsHelper();

    void init();

    QStringList m_tips;
};
