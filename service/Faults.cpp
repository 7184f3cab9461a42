#include "service/Faults.h"

#include <thread>

#include <QRandomGenerator>

#include "service/Exchange.h"

namespace {

constexpr std::chrono::milliseconds leastLatencyOfCuts{20};

struct Word
{
    const char *name;
    double least;
    double most;
    bool isWhole;
};

const Word knownWords[] = {
    {"latency", 0, 600'000, true}, {"drop", 0, 1, false},     {"cut", 0, 1, false},
    {"cutAt", 0, 1e15, true},      {"error", 400, 599, true}, {"errorRate", 0, 1, false},
    {"retryAfter", 0, 3600, true}, {"rate", 1, 1e12, true},   {"times", 1, 1e9, true},
};

double readWord(const QString &name, const QString &text)
{
    for (const Word &word : knownWords) {
        if (name != QLatin1String(word.name))
            continue;
        bool isNumber = false;
        const double value = text.toDouble(&isNumber);
        if (isNumber && value >= word.least && value <= word.most &&
            (!word.isWhole || value == double(qint64(value))))
            return value;
        throw Refusal{Refusal::BadRequest,
                      QStringLiteral("\"%1\" can not be \"%2\"").arg(name, text)};
    }
    throw Refusal{Refusal::BadRequest, QStringLiteral("no fault is called \"%1\"").arg(name)};
}

bool happens(double chance)
{
    return QRandomGenerator::global()->generateDouble() < chance;
}

} // namespace

void BandwidthLimit::wait(qint64 bytes)
{
    Clock::time_point until;
    {
        const std::lock_guard lock(m_mutex);
        const std::chrono::duration<double> share(double(bytes) / double(m_bytesPerSecond));
        m_free = std::max(m_free, Clock::now());
        m_free += std::chrono::duration_cast<Clock::duration>(share);
        until = m_free;
    }
    std::this_thread::sleep_until(until);
}

qint64 BandwidthLimit::blockBytes() const
{
    return qBound<qint64>(1, m_bytesPerSecond / 20, 65536);
}

void Faults::command(const QUrlQuery &words)
{
    QString path = QStringLiteral("/");
    Rule rule;
    for (const auto &[name, text] : words.queryItems(QUrl::FullyDecoded)) {
        if (name == QLatin1String("path"))
            path = text;
        else
            rule.words.insert(name, readWord(name, text));
    }
    const auto number = [&](const char *name) {
        return rule.words.value(QLatin1String(name)).toDouble(-1);
    };
    rule.timesLeft = qint64(number("times"));
    if (number("rate") > 0)
        rule.limit = std::make_shared<BandwidthLimit>(qint64(number("rate")));
    const std::lock_guard lock(m_mutex);
    m_rules.erase(path);
    if (!rule.words.isEmpty())
        m_rules.emplace(path, rule);
}

void Faults::clear()
{
    const std::lock_guard lock(m_mutex);
    m_rules.clear();
}

QJsonObject Faults::toJson() const
{
    const std::lock_guard lock(m_mutex);
    QJsonObject faults;
    for (const auto &[path, rule] : m_rules)
        faults.insert(path, rule.words);
    return faults;
}

FaultPlan Faults::planFor(const QString &path)
{
    const std::lock_guard lock(m_mutex);
    // Backwards in order, the longer of two beginnings comes first.
    auto rule = m_rules.rbegin();
    while (rule != m_rules.rend() && !path.startsWith(rule->first))
        ++rule;
    FaultPlan plan;
    if (rule == m_rules.rend() || rule->second.timesLeft == 0)
        return plan;
    if (rule->second.timesLeft > 0)
        --rule->second.timesLeft;
    const QJsonObject &words = rule->second.words;
    const auto number = [&](const char *name, double defaultValue = 0) {
        return words.value(QLatin1String(name)).toDouble(defaultValue);
    };
    const bool hasCutAt = words.contains(QLatin1String("cutAt"));
    plan.latency = std::chrono::milliseconds(qint64(number("latency")));
    plan.drop = happens(number("drop"));
    plan.cut = happens(number("cut", hasCutAt ? 1 : 0));
    // Without any latency Qt may send a request that breaks off again by itself, unnoticed.
    if (plan.cut)
        plan.latency = std::max(plan.latency, leastLatencyOfCuts);
    if (hasCutAt)
        plan.cutAt = qint64(number("cutAt"));
    if (happens(number("errorRate", 1)))
        plan.error = int(number("error"));
    if (words.contains(QLatin1String("retryAfter")))
        plan.retryAfter = QByteArray::number(qint64(number("retryAfter")));
    plan.limit = rule->second.limit;
    return plan;
}
