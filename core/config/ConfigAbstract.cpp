#include "core/config/ConfigAbstract.h"

ConfigAbstract::ConfigAbstract(QObject *parent) : QObject(parent) {}

ConfigAbstract::~ConfigAbstract() = default;

void ConfigAbstract::setLoaded()
{
    if (m_isLoaded)
        return;
    m_isLoaded = true;
    Q_EMIT loadFinished();
}
