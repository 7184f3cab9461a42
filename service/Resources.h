#pragma once

#include "service/DataFolder.h"
#include "service/Exchange.h"

/// The lists of game clients and Java runtimes, and the records of single resources. Any thread.
class Resources
{
public:
    explicit Resources(DataFolder &data);

    QJsonObject clients(const Call &call);
    QJsonObject javas(const Call &call);
    QJsonObject info(const Call &call);

private:
    QList<Entry> listed(const QString &file, const QString &key);

    DataFolder &m_data;
};
