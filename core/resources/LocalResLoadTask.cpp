#include "core/resources/LocalResLoadTask.h"

#include <QDir>
#include <QDirIterator>
#include <QTextStream>

#include "support/coresupport/DirectoryNames.h"

namespace {

constexpr int mostNamesInATurn = 1000;

} // namespace

LocalResLoadTask::LocalResLoadTask(const QString &baseDir, QObject *parent)
    : TaskAbstract(parent),
      m_nameFilters(QStringLiteral("*.inf")),
      m_filePattern(QStringLiteral("^\\d+\\.inf$")),
      m_baseDir(baseDir),
      m_timer(this)
{
    const auto look = [this](const char *name, ResType type) {
        m_pendingDirectories.insert(QString::fromUtf8(name), type);
    };
    look(g_respath_game_name, ResTypeGame);
    look(g_respath_mods_name, ResTypeMods);
    look(g_respath_saves_name, ResTypeSaves);
    look(g_respath_textures_name, ResTypeResourcePacks);
    look(g_respath_skins_name, ResTypeSkins);
    look(g_respath_cloaks_name, ResTypeCloaks);
    look(g_respath_other_name, ResTypeOther);
    look(g_respath_shaders_name, ResTypeShaders);
}

LocalResLoadTask::~LocalResLoadTask() = default;

void LocalResLoadTask::onTaskRun()
{
    runOnEachTurn(&LocalResLoadTask::listNextDirectory);
}

void LocalResLoadTask::runOnEachTurn(void (LocalResLoadTask::*step)())
{
    disconnect(m_timerConnection);
    m_timerConnection = connect(&m_timer, &QTimer::timeout, this, step);
    m_timer.start(0);
}

void LocalResLoadTask::listNextDirectory()
{
    if (m_pendingDirectories.isEmpty()) {
        runOnEachTurn(&LocalResLoadTask::reportNextFile);
        return;
    }
    const auto next = m_pendingDirectories.begin();
    if (!m_listing)
        m_listing = std::make_unique<QDirIterator>(m_baseDir % QDir::separator() % next.key(),
                                                   m_nameFilters, QDir::Files);
    QStringList &found = m_foundFiles[next.value()];
    for (int names = 0; names < mostNamesInATurn && m_listing->hasNext(); ++names) {
        m_listing->next();
        found += m_listing->fileName();
    }
    if (m_listing->hasNext())
        return;
    m_listing.reset();
    m_pendingDirectories.erase(next);
}

void LocalResLoadTask::reportNextFile()
{
    const auto found = m_foundFiles.begin();
    if (found == m_foundFiles.end()) {
        disconnect(m_timerConnection);
        m_timer.stop();
        emitSucceeded();
        return;
    }
    if (found->isEmpty()) {
        m_foundFiles.erase(found);
        return;
    }
    QString name = found->takeFirst();
    if (!m_filePattern.exactMatch(name))
        return;
    uint id = 0;
    QTextStream(&name) >> id;
    Q_EMIT oneResLoaded(id, found.key());
}
