#ifndef PLANNINGCLIENT_H
#define PLANNINGCLIENT_H

#include "ClientAccess.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The state of a client that changes what an installer does.
struct ClientState
{
    bool legacyMode = false;
    bool osVariantMarker = false;
    std::optional<QString> modality; // the modality file's first line, with its line end
};

// A client that only records: every step an installer asks for becomes a Step, and
// nothing is run, written or started. Digests and file-valued keys are taken from the stick's
// file that the planned copies and links lead back to.
class PlanningClient : public ClientAccess
{
public:
    explicit PlanningClient(const ClientState &state);

    const QList<Step> &steps() const { return m_steps; }
    // The shell command lines in order.
    QStringList commands() const;
    // The programs the commands run, each once, in order of first use.
    QStringList tools() const;

    bool isLegacyMode() override;
    bool hasOsVariantMarker() override;
    std::optional<QString> modality() override;
    QString digest(const QString &path) override;
    // Judged again by the scan's rule: the check's scan judged the same file a moment before,
    // so the answer is the scan's.
    std::optional<QString> judgeAgain(const InstallJob &job, const QString &file) override;
    // The check assumes a client whose tree holds no links but the installers' own.
    std::optional<QString> refusesDestination(const QString &destination) override;

    StepResult perform(const Step &step) override;

private:
    // The file whose bytes path would hold after the steps so far: followed back through the
    // planned links and copies to the source of the first copy. Empty when no planned copy
    // leads to path.
    QString copiedFrom(QString path) const;

    ClientState m_state;
    QList<Step> m_steps;
};

#endif
