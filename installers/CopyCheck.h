#ifndef COPYCHECK_H
#define COPYCHECK_H

#include <QHash>
#include <QString>

#include <optional>

// Whether a copy holds its source's bytes, found without a digest of both.
namespace installers {

enum class SameBytes { Yes, No, Unreadable };

// Compares two regular files block by block, opened without blocking (the source is on the
// stick, where a FIFO may stand by now). Right after a copy both are in the page cache, so this
// reads memory and hashes nothing.
SameBytes compareFiles(const QString &first, const QString &second);

// The digest pictureDigest() gives of copy, taken while comparing copy with source in the same
// pass; *same says how the comparison went.
QString digestComparing(const QString &copy, const QString &source, SameBytes *same);

// One state of a file (followed through links): equal stamps, nothing written in between.
struct FileStamp
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 changedSeconds = 0;
    qint64 changedNanoseconds = 0;

    bool operator==(const FileStamp &other) const;
};
std::optional<FileStamp> stampOf(const QString &path);

// A comparison made during the installation, and the states of the two files it saw: the
// verification reuses it while both are unchanged.
struct EarlierComparison
{
    SameBytes same = SameBytes::Unreadable;
    std::optional<FileStamp> copy;
    std::optional<FileStamp> source;
};
using EarlierComparisons = QHash<QString, EarlierComparison>; // by the copy's clean path

} // namespace installers

#endif
