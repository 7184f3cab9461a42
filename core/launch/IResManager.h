#pragma once

#include <memory>

#include <QJsonObject>
#include <QtGlobal>

class ResObj;

/// Where launch steps get their resources from; the host implements it. Main thread only.
///
/// A step never installs a resource itself: the operations that make an object leave its
/// installation in progress, and ResInstallDone comes by signal after the step has connected, also
/// for a resource that is already up to date. Otherwise the step waits for ever.
class IResManager
{
public:
    virtual ~IResManager() = default;

    /// The object already known for the pair of id and ResType, or null.
    virtual std::shared_ptr<ResObj> knownRes(quint32 id, quint32 type) = 0;
    /// The object of the pair, made from the service's description @p info if it is new.
    virtual std::shared_ptr<ResObj> resFromInfo(quint32 id, quint32 type,
                                                const QJsonObject &info) = 0;
    /// The object of the pair, made if it is new.
    virtual std::shared_ptr<ResObj> resOf(quint32 id, quint32 type) = 0;
};
