#include "SecConfig.h"

bool SecConfig::Load()
{
    return false;
}

bool SecConfig::Save()
{
    return true;
}

bool SecConfig::setRootPassword(const QString & /*newPassword*/)
{
    return false;
}
