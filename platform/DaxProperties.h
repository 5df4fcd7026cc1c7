#ifndef DAXPROPERTIES_H
#define DAXPROPERTIES_H

#include "DaxRegistry.h"

#include <QMap>
#include <QString>

// One configuration store of the client, named by its configuration path.
class DaxProperties : public DaxRegistry
{
public:
    DaxProperties(const QString &path, const QString &section, bool create);
    ~DaxProperties() override;

    // False when the store does not exist or cannot be read; the values are then left as
    // they were.
    bool Load();
    // Writes every value of this object as the whole store. Refuses (false) to replace a store
    // that Load() found but could not read.
    bool Save();

    bool GetBoolean(const QString &key, bool defaultValue);
    void SetBoolean(const QString &key, bool value);
    QString GetString(const QString &key, const QString &defaultValue);
    void SetString(const QString &key, const QString &value);
    QString getEncryptedString(const QString &key, const QString &defaultValue);
    void setEncryptedString(const QString &key, const QString &value);

private:
    struct Value
    {
        QString text; // for an encrypted value: the sealed text as it is stored
        bool encrypted = false;
    };
    QMap<QString, Value> m_values;
    // Set when Load() found a store it could not read; Save() then refuses to replace it.
    bool m_unreadableStore = false;
};

#endif
