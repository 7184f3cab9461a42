#include "support/jsonfskit/Exception.h"

Exception::Exception(const QString &cause) : m_cause(cause.toUtf8()) {}

Exception::~Exception() = default;

QString Exception::cause() const
{
    return QString::fromUtf8(m_cause);
}

const char *Exception::what() const noexcept
{
    return m_cause.constData();
}
