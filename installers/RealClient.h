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

    StepResult perform(const Step &step) override;

    // Whether a shell step's status is the shell's exit status itself (the host platform), not
    // only zero against non-zero (the client's own library).
    static bool statusesAreExact();
};

#endif
