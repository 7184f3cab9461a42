#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include <QJsonObject>
#include <QString>
#include <QUrlQuery>

/// A limit that many transfers share.
class BandwidthLimit
{
public:
    explicit BandwidthLimit(qint64 bytesPerSecond) : m_bytesPerSecond(bytesPerSecond) {}

    /// Blocks until @p bytes more may be sent.
    void wait(qint64 bytes);
    /// How much to send at once, so that the stream does not come in jerks.
    qint64 blockBytes() const;

private:
    using Clock = std::chrono::steady_clock;

    const qint64 m_bytesPerSecond;
    std::mutex m_mutex;
    Clock::time_point m_free = Clock::now();
};

/// What goes wrong with one request.
struct FaultPlan
{
    std::chrono::milliseconds latency{0};
    bool drop = false;           ///< no answer at all
    bool cut = false;            ///< the body breaks off
    std::optional<qint64> cutAt; ///< after so many bytes of it; somewhere if there is none
    int error = 0;               ///< this status instead of the answer
    QByteArray retryAfter;       ///< seconds, with that status
    std::shared_ptr<BandwidthLimit> limit;
};

/// What the service does wrong on command, by the beginning of the path; the longest beginning
/// counts. Any thread.
class Faults
{
public:
    /// Takes one command, such as "path=/files/&drop=0.1&latency=200"; service/README.md tells the
    /// words. It replaces what was said for that path before. Throws Refusal on a word or a value
    /// that means nothing.
    void command(const QUrlQuery &words);
    void clear();
    /// The faults in force, path by path.
    QJsonObject toJson() const;

    /// Throws the dice for one request.
    FaultPlan planFor(const QString &path);

private:
    struct Rule
    {
        QJsonObject words; ///< as told
        qint64 timesLeft = -1;
        std::shared_ptr<BandwidthLimit> limit;
    };

    mutable std::mutex m_mutex;
    std::map<QString, Rule> m_rules;
};
