#include "support/coresupport/OrMCAuthenticateTaskAbstract.h"

OrMCAuthenticateTaskAbstract::OrMCAuthenticateTaskAbstract(QObject *parent) : TaskAbstract(parent)
{
}

OrMCAuthenticateTaskAbstract::~OrMCAuthenticateTaskAbstract() = default;
