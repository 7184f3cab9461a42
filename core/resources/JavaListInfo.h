#pragma once

#include <memory>

#include <QJsonObject>
#include <QList>
#include <QObject>

#include "base/RivetCoreExport.h"

class QNetworkAccessManager;
class QNetworkReply;
template <typename Type>
class LazySingleton;

/// The Java runtimes that the service offers.
///
/// A singleton until the at-exit manager runs; main thread only. The list is fetched once; the last
/// good answer lies in "list.cache" of the download directory and serves where the service can't be
/// reached.
class RIVETCORE_EXPORT JavaListInfo : public QObject
{
    Q_OBJECT
public:
    ~JavaListInfo() override;

    static JavaListInfo *GetInstance();

    /// Fetches the list, unless it is there or on its way.
    void updateList();
    bool isListUpdated() const { return m_isUpdated; }

    /// All descriptions, in the order of the service.
    QList<QJsonObject> javas() const { return m_runtimes; }
    /// The description of a runtime as the service sent it; empty if it lists none of that id.
    QJsonObject javaInfo(uint id) const;
    /// The first runtime whose name holds "x64" or, without @p is64Bit, "x86"; else empty.
    QJsonObject javaInfoForSystem(bool is64Bit) const;

Q_SIGNALS:
    /// After each fetch; @p success tells whether there is a list now.
    void updateListFinished(bool success);

public Q_SLOTS:
    void onNetGetListFinished();

private:
    friend class LazySingleton<JavaListInfo>;
    JavaListInfo();

    bool parseListInfo(const QJsonObject &answer);

    bool m_isUpdated = false;
    QNetworkReply *m_reply = nullptr; ///< in flight
    std::shared_ptr<QNetworkAccessManager> m_manager;
    QList<QJsonObject> m_runtimes; ///< in the order of the service
};
