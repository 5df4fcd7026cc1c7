#ifndef REALCLIENT_H
#define REALCLIENT_H

#include "ClientAccess.h"

// The client itself, as the program reaches it: the platform library's shell runner, stores
// and registry, and the toolkit's files. Stateless, so one per installation will do.
class RealClient : public ClientAccess
{
public:
    bool isLegacyMode() override;
    bool hasOsVariantMarker() override;
    std::optional<QString> modality() override;
    QString digest(const QString &path) override;

    void run(const QString &commandLine, const Effect &effect) override;
    void copyFile(const QString &from, const QString &to) override;
    void makeFolder(const QString &folder) override;
    bool writeStore(const QString &store, const KeyValues &values) override;
    void writeRegistry(const QString &key, const QString &name, const QString &value) override;
};

#endif
