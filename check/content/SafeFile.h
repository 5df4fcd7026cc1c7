#ifndef SAFEFILE_H
#define SAFEFILE_H

#include <QByteArray>
#include <QString>

// A regular file of the stick, opened for reading only: without following a link off the stick,
// without blocking on a device or a pipe that took the file's place, and never executed.
class SafeFile
{
public:
    // Opens dir/name; a link is followed only to a regular file inside dir.
    SafeFile(const QString &dir, const QString &name);
    ~SafeFile();
    SafeFile(const SafeFile &) = delete;
    SafeFile &operator=(const SafeFile &) = delete;

    bool isOpen() const { return m_fd >= 0; }
    QString error() const { return m_error; } // why it is not open
    int fd() const { return m_fd; }
    qint64 size() const { return m_size; }
    // At most limit bytes from the start; truncated() says whether the file held more.
    QByteArray read(qint64 limit);
    bool truncated() const { return m_truncated; }

private:
    int m_fd = -1;
    qint64 m_size = 0;
    bool m_truncated = false;
    QString m_error;
};

#endif
