#ifndef SHA256_H
#define SHA256_H

#include <QString>
#include <QStringList>
#include <QThread>

#include <memory>
#include <vector>

class UniqueFd;

struct PackageType;

// Takes the SHA-256 (libcrypto's accelerated code) of the files picked from a stick on a thread
// of its own, so that an installation running beside it waits for nothing. Each file is judged
// by the safety rules and opened when the worker is made, before the installation's first
// command, and read through that descriptor: a name that becomes a link or a FIFO while the
// installation runs changes nothing of what is read. Runs at idle priority, so that on a busy
// client the installation and the window are not slowed. Starts in its constructor and waits
// for itself in its destructor.
class Sha256Worker : public QThread
{
    Q_OBJECT

public:
    Sha256Worker(const PackageType &type, const QString &dir, const QStringList &picked,
                 QObject *parent = nullptr);
    ~Sha256Worker() override;

    // The digests in the order of the files (empty for a file that was not read); waits for
    // the thread first.
    QStringList digests();

protected:
    void run() override;

private:
    std::vector<std::unique_ptr<UniqueFd>> files; // null where a file is not to be read
    QStringList results;
};

#endif
