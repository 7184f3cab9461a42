#include "platform/NameServers.h"

#include <QFile>

namespace platform {

namespace {

class ResolverNameServers final : public NameServers
{
public:
    QString first() const override
    {
        QFile file(QStringLiteral("/etc/resolv.conf"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        while (!file.atEnd()) {
            const QList<QByteArray> words = file.readLine().simplified().split(' ');
            if (words.size() > 1 && words.first() == "nameserver")
                return QString::fromLatin1(words.at(1));
        }
        return {};
    }
};

} // namespace

const NameServers &NameServers::ofSystem()
{
    static const ResolverNameServers servers;
    return servers;
}

QString NameServers::commandTemplate()
{
    return QStringLiteral("resolvectl dns \"%1\" %2");
}

} // namespace platform
