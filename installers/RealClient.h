#ifndef REALCLIENT_H
#define REALCLIENT_H

#include "ClientAccess.h"

#include <QByteArray>
#include <QHash>

#include <sys/types.h>

// The client itself, as the program reaches it: the platform library's shell runner, stores
// and registry, and the toolkit's files. One per installation: it remembers which file each
// path it judged was.
class RealClient : public ClientAccess
{
public:
    bool isLegacyMode() override;
    bool hasOsVariantMarker() override;
    std::optional<QString> modality() override;
    QString digest(const QString &path) override;
    std::optional<QString> judgeAgain(const InstallJob &job, const QString &file) override;
    std::optional<QString> refusesDestination(const QString &destination) override;

    StepResult perform(const Step &step) override;

    // Whether a shell step's status is the shell's exit status itself (the host platform), not
    // only zero against non-zero (the client's own library).
    static bool statusesAreExact();

private:
    // The toolkit's copy of a judged file (Effect::copiesKeepingExisting); false when nothing
    // was copied.
    bool copyJudged(const QString &from, const QString &to);

    // A file as judgeAgain() accepted it: where its links end, and which file that was.
    struct Judged
    {
        QByteArray resolved;
        dev_t device;
        ino_t inode;
    };
    QHash<QString, Judged> m_judged; // by the path the installers name it with
};

#endif
