#ifndef DAXREGISTRY_H
#define DAXREGISTRY_H

#include <QString>

// Base of the client's configuration stores: names the store (a configuration path such as
// "user/system/security") and tells whether the client keeps its settings in the legacy INI
// registry instead.
class DaxRegistry
{
public:
    DaxRegistry();
    virtual ~DaxRegistry();
    DaxRegistry(const DaxRegistry &) = delete;
    DaxRegistry &operator=(const DaxRegistry &) = delete;

    void setPath(const QString &path);
    QString path() const;

    static bool isLegacyMode();

private:
    QString m_path;
};

#endif
