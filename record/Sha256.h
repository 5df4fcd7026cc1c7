#ifndef SHA256_H
#define SHA256_H

#include <QString>
#include <QStringList>
#include <QThread>

namespace record {

// SHA-256 of a file's bytes as 64 lower-case hexadecimal digits, with libcrypto's accelerated
// code; empty when the file cannot be read or is not a regular file.
QString sha256OfFile(const QString &path);

} // namespace record

struct PackageType;

// Takes the SHA-256 of the files picked from a stick on a thread of its own, so that an
// installation running beside it waits for nothing. Reads only a file that the safety rules
// offer as the type when it is made (a link off the stick is never followed). Runs at idle
// priority, so that on a busy client the installation and the window are not slowed. Starts in
// its constructor and waits for itself in its destructor.
class Sha256Worker : public QThread
{
    Q_OBJECT

public:
    Sha256Worker(const PackageType &type, const QString &dir, const QStringList &files,
                 QObject *parent = nullptr);
    ~Sha256Worker() override;

    // The digests in the order of the files (empty for a file that was not read); waits for
    // the thread first.
    QStringList digests();

protected:
    void run() override;

private:
    const QStringList paths; // empty where a file is not to be read
    QStringList results;
};

#endif
