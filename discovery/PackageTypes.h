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

namespace detail {

using P = SelectionPage;
using R = InstallerRoutine;

inline constexpr char pictures[] = "*.jpg *.jpeg *.gif *.png *.bmp";

// clang-format off
inline constexpr std::array rows{
    PackageType{"ppd",           "Printer Driver",        "*.ppd",
                P::Multi,   1, "ppd",           "Installing printer drivers...",            R::PrinterDrivers, -1},
    PackageType{"cert",          "Certificate",           "*.cer *.crt *.pem *.p12 *.der *.pfx",
                P::Multi,   2, "cert",          "Installing certificates...",               R::Certificates,   -1},
    PackageType{"update",        "Firmware Update",       "*.tzupg *.tar",
                P::Single,  6, "firmware",      "Installing firmware update...",            R::Update,         -1},
    PackageType{"ScreenConnect", "Screen Connect",        "ScreenConnect.ClientSetup.deb",
                P::Single,  7, "ScreenConnect", "Installing Screen Connect...",             R::ScreenConnect,  -1},
    PackageType{"wallpaper",     "Wallpaper",             pictures,
                P::Single,  3, "wallpaper",     "Installing wallpaper...",                  R::Wallpaper,      -1},
    PackageType{"icon",          "Icon",                  pictures,
                P::Single,  4, "icon",          "Installing icon...",                       R::Icon,           -1},
    PackageType{"desktop",       "Desktop Image",         "*.jpg",
                P::Single,  8, "desktop",       "Installing Desktop Image...",              R::Desktop,        -1},
    PackageType{"screensaver",   "ScreenSaver",           "*.jpg",
                P::Single,  5, "screensaver",   "Screensaver image(s)...",                  R::Screensaver,    -1},
    PackageType{"iwallpaper",    "Imprivata Wallpaper",   pictures,
                P::Single,  9, "iwallpaper",    "Installing Imprivata Wallpaper Image...",  R::ImprivataImage,  0},
    PackageType{"ilogo",         "Imprivata Login Image", "*.png",
                P::Single, 10, "ilogo",         "Installing Imprivata Login Image...",      R::ImprivataImage,  2},
    PackageType{"iproxcard",     "Imprivata Card Image",  "*.png",
                P::Single, 11, "iproxcard",     "Installing Imprivata Card Image...",       R::ImprivataImage,  1},
    PackageType{"openvpn",       "OpenVPN",               "*.ovpn",
                P::Single, 12, "openvpn",       "Installing OpenVPN client config...",      R::OpenVpn,        -1},
    PackageType{"rdpfile",       "RDP file",              "*.rdp",
                P::Single, 13, "rdpfile",       "Importing RDP file settings...",           R::RdpFile,        -1},
    PackageType{"disclaimer",    "Disclaimer",            "*.txt *.html",
                P::Single, 14, "disclaimer",    "Importing disclaimer...",                  R::Disclaimer,     -1},
};
// clang-format on

} // namespace detail

// How many package types there are.
inline constexpr std::size_t count = detail::rows.size();

// Every package type, in scan order.
inline constexpr const std::array<PackageType, count> &all()
{
    return detail::rows;
}

// The row whose type key equals key exactly, or nullptr.
const PackageType *find(const QString &key);

// The types in the order the main window inserts them into its type list.
std::array<const PackageType *, count> inListOrder();

} // namespace PackageTypes

#endif
