#ifndef PACKAGETYPES_H
#define PACKAGETYPES_H

#include <QString>
#include <QStringList>

#include <array>

// The installer routine that handles a package type (see installers/).
enum class InstallerRoutine {
    PrinterDrivers,
    Certificates,
    Update,
    ScreenConnect,
    Wallpaper,
    Icon,
    Desktop,
    Screensaver,
    ImprivataImage,
    OpenVpn,
    RdpFile,
    Disclaimer,
};

enum class SelectionPage { Multi, Single };

// One row of the package type table.
struct PackageType
{
    const char *key;         // type key, compared exactly and case-sensitively
    const char *displayName; // text of the type's row in the main window
    const char *patterns;    // name patterns for the scan, blank-separated, in order
    SelectionPage page;
    int listOrder; // position in which the main window inserts the type into its list
    // The progress dialog binds each text to a key. For the firmware update it is
    // "firmware", not the type key "update", so that text is never shown.
    const char *progressKey;
    const char *progressText;
    InstallerRoutine routine;
    int imageKind; // argument for the Imprivata image installer, -1 for other routines

    QString typeKey() const { return QString::fromLatin1(key); }
    QString name() const { return QString::fromLatin1(displayName); }
    QStringList patternList() const;
    QString iconPath() const;
    // The text the progress dialog shows for this type: empty where the text is bound to
    // another key than the type's own.
    QString progressLabel() const;
};

namespace PackageTypes {

// Every package type, in scan order.
const std::array<PackageType, 14> &all();

// The row whose type key equals key exactly, or nullptr.
const PackageType *find(const QString &key);

// The types in the order the main window inserts them into its type list.
std::array<const PackageType *, 14> inListOrder();

} // namespace PackageTypes

#endif
