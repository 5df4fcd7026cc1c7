#include "DaxProperties.h"

DaxProperties::DaxProperties(const QString &path, const QString &section, bool create)
    : m_section(section), m_create(create)
{
    setPath(path);
}

DaxProperties::~DaxProperties() = default;

bool DaxProperties::Load()
{
    return false;
}

bool DaxProperties::Save()
{
    return false;
}

bool DaxProperties::GetBoolean(const QString &key, bool defaultValue)
{
    const auto it = m_values.constFind(key);
    if (it == m_values.constEnd())
        return defaultValue;
    return it->text == QLatin1String("true") || it->text == QLatin1String("1");
}

void DaxProperties::SetBoolean(const QString &key, bool value)
{
    m_values.insert(key, {value ? QStringLiteral("true") : QStringLiteral("false"), false});
}

QString DaxProperties::GetString(const QString &key, const QString &defaultValue)
{
    return m_values.value(key, {defaultValue, false}).text;
}

void DaxProperties::SetString(const QString &key, const QString &value)
{
    m_values.insert(key, {value, false});
}

QString DaxProperties::getEncryptedString(const QString &key, const QString &defaultValue)
{
    return GetString(key, defaultValue);
}

void DaxProperties::setEncryptedString(const QString &key, const QString &value)
{
    m_values.insert(key, {value, true});
}
