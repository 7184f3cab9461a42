#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include "core/accounts/OrMCAuthSession.h"

/// What one launch needs to know. The host fills it before the chain of steps runs and shares it
/// with the steps by std::shared_ptr. Main thread only.
struct OrAuthServerInstanceInfo
{
    quint32 id = 0;      ///< of the game instance, as the resource configuration knows it
    QString windowTitle; ///< text for the title of the game's window
    QString sid;         ///< goes to the game as the environment variable "SID"
    /// The keys are the ResType values of the resources to prepare; no step reads the lists.
    QHash<quint32, QList<quint32>> resTypes;
    QString host;     ///< of the server; set by the step that selects a line
    quint16 port = 0; ///< likewise
    OrMCAuthSession session;
};
