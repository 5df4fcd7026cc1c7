#ifndef INSTALLATIONRECORD_H
#define INSTALLATIONRECORD_H

#include <QString>
#include <QStringList>

#include <memory>

class Sha256Worker;
struct InstallJob;
struct InstallOutcome;

// The record one installation leaves: entries in the system log (when it starts, each failed
// step and each file left out, when it ends) and, when the stick asks for one, a report file
// on the stick. Made just before the installation's first step: it sends the first entry and
// takes the picked files' SHA-256 on a thread of its own while the installation runs.
class InstallationRecord
{
public:
    explicit InstallationRecord(const InstallJob &job);
    ~InstallationRecord();
    InstallationRecord(const InstallationRecord &) = delete;
    InstallationRecord &operator=(const InstallationRecord &) = delete;

    // After the verification: the report on the stick, then the remaining entries. Neither
    // can change the outcome.
    void finish(const InstallOutcome &outcome);

private:
    const QString dir;
    std::unique_ptr<Sha256Worker> digests;
};

#endif
