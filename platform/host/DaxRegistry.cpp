#include "DaxRegistry.h"

DaxRegistry::DaxRegistry() = default;
DaxRegistry::~DaxRegistry() = default;

void DaxRegistry::setPath(const QString &path)
{
    m_path = path;
}

QString DaxRegistry::path() const
{
    return m_path;
}

bool DaxRegistry::isLegacyMode()
{
    return qgetenv("DAX_LEGACY_MODE") == "1";
}
