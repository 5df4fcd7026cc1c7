#include "DaxRegIni.h"

DaxRegIni::DaxRegIni() = default;
DaxRegIni::~DaxRegIni() = default;

void DaxRegIni::SetIniPath(const char *path)
{
    m_iniPath = path;
}

int DaxRegIni::OpenKey(const QString &root, const QString &key, unsigned int access)
{
    m_section = root + QLatin1Char('\\') + key;
    m_writable = (access & 0x20006U) != 0;
    m_open = true;
    return 1;
}

int DaxRegIni::SetSz(const QString & /*name*/, const QString & /*value*/)
{
    return 1;
}

void DaxRegIni::CloseKey()
{
    m_open = false;
}
