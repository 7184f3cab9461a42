#pragma once

#include <QString>
#include <QThread>

#include "base/RivetCoreExport.h"

/// Waits on a thread of its own until the game can take input, then puts a title on its window.
///
/// Made, set up and deleted on the main thread, by the LaunchMcProcess that is its parent; setters
/// only before start(). The thread ends in all cases, at the latest when the object is deleted,
/// which interrupts it and blocks for a fraction of a second.
class RIVETCORE_EXPORT WaitMcClientInitialized : public QThread
{
    Q_OBJECT
public:
    explicit WaitMcClientInitialized(QObject *parent = nullptr);
    ~WaitMcClientInitialized() override;

    void setProcessId(qint64 processId);
    /// An empty title leaves the game's own.
    void setWindowTitle(const QString &title);

    /// After the thread's end: true if the game ended before it could take input.
    bool hasGameEnded() const;

protected:
    void run() override;

private:
    qint64 m_processId = 0;
    QString m_windowTitle;
    bool m_gameEnded = false;
};
