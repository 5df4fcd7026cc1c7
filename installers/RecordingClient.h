#ifndef RECORDINGCLIENT_H
#define RECORDINGCLIENT_H

#include "ClientAccess.h"

struct InstallOutcome;

// Passes everything on to the client it wraps and writes each step performed, with its status,
// and each file skipped into an outcome, for the verification that follows.
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

private:
    ClientAccess &m_client;
    InstallOutcome &m_outcome;
};

#endif
