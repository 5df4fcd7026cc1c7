#ifndef RECORDINGCLIENT_H
#define RECORDINGCLIENT_H

#include "ClientAccess.h"
#include "CopyCheck.h"

struct InstallOutcome;

// Passes everything on to the client it wraps and writes each step performed, with its status,
// and each file skipped into an outcome, for the verification that follows. The digest of a
// file that a recorded copy (or a link to one) put there is taken while comparing the copy with
// its source, in one pass: the verification then reuses that comparison instead of reading
// both files again.
class RecordingClient : public ClientAccess
{
public:
    RecordingClient(ClientAccess &client, InstallOutcome &outcome);

    bool isLegacyMode() override;
    bool hasOsVariantMarker() override;
    std::optional<QString> modality() override;
    QString digest(const QString &path) override;
    void fileSkipped(const QString &file, const QString &reason) override;
    std::optional<QString> judgeAgain(const InstallJob &job, const QString &file) override;
    std::optional<QString> refusesDestination(const QString &destination) override;
    StepResult perform(const Step &step) override;

    const installers::EarlierComparisons &comparisons() const { return m_comparisons; }

private:
    ClientAccess &m_client;
    InstallOutcome &m_outcome;
    installers::EarlierComparisons m_comparisons;
};

#endif
