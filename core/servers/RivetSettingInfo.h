#pragma once

#include <memory>

#include <QList>
#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"

class QJsonObject;
class QNetworkAccessManager;
class QNetworkReply;
template <typename Type>
class LazySingleton;

/// A button or link that the host shows. What the fields mean is between service and host.
struct RivetBtnInfo
{
    QString name;
    QString link;
    QString text;
    QString id;
    QString type;
    QString btnType;
    QString status;
};

/// A contact of the customer service.
struct CustomerServiceInfo
{
    QString name;
    QString url;
    int sort = 0; ///< the place in the list, smallest first
};

/// The launcher's remote settings, fetched once in a process.
///
/// A singleton until the at-exit manager runs. Main thread only. Without a network the last good
/// answer on disk counts; until one of the two is there, the lists are empty and updateInfo() may
/// be called again.
class RIVETCORE_EXPORT RivetSettingInfo : public QObject
{
    Q_OBJECT
public:
    ~RivetSettingInfo() override;

    static RivetSettingInfo *GetInstance();

    /// Ends in updateInfoFinished(). Does nothing while a request is in flight, nor once there is
    /// information.
    void updateInfo();

    bool isInfoUpdated() const { return m_isUpdated; }
    QList<std::shared_ptr<CustomerServiceInfo>> customerServiceInfoList() const
    {
        return m_contacts;
    }
    /// The first button of that name, compared with case; null if there is none.
    std::shared_ptr<RivetBtnInfo> getrivetButtonInfoByName(const QString &name) const;

Q_SIGNALS:
    /// @p success is whether there is information now.
    void updateInfoFinished(bool success);

protected Q_SLOTS:
    void onNetGetInfoFinished();

protected:
    /// Replaces both lists. An answer without either is a good one.
    bool parseInfo(const QJsonObject &object);

private:
    friend class LazySingleton<RivetSettingInfo>;
    RivetSettingInfo();

    bool m_isUpdated = false;
    QNetworkReply *m_reply = nullptr; ///< owned by the manager
    std::shared_ptr<QNetworkAccessManager> m_manager;
    QList<std::shared_ptr<CustomerServiceInfo>> m_contacts;
    QList<std::shared_ptr<RivetBtnInfo>> m_buttons;
};
