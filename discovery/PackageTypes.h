#ifndef PACKAGETYPES_H
#define PACKAGETYPES_H

#include <QString>
#include <QStringList>

#include <array>

// What a type's files hold, for the stick check's content check (check/content/).
enum class Content {
    PrinterDriver,
    Certificate,
    Firmware,
    DebianPackage,
    OpenVpnProfile,
    RdpFile,
    Disclaimer,
    Picture,
};

// Where a type's installer copies a file under a name of the stick's making, which the name
// rule judges as well.
enum class CopiedAs {
    Elsewhere,        // under a name of its own, or into a folder of its own
    BlankFreeOnStick, // beside itself on the stick, without its blanks (certificates)
    InFilesFolder,    // into the client's files folder under its own name (Imprivata pictures)
};

enum class SelectionPage { Multi, Single };

// One row of the package type table: everything a package type is, but its installer (one
// line of installers/Dispatch.cpp) and its icon (ui/icons/, named after the key).
struct PackageType
{
    const char *key;         // type key, compared exactly and case-sensitively
    const char *displayName; // text of the type's row in the main window
    const char *patterns;    // name patterns for the scan, blank-separated, in order
    SelectionPage page;
    // The progress dialog binds each text to a key. For the firmware update it is
    // "firmware", not the type key "update", so that text is never shown.
    const char *progressKey;
    const char *progressText;
    Content content;
    CopiedAs copiedAs = CopiedAs::Elsewhere;
    // The Imprivata pictures: the key of the picture's path in the Imprivata store (and the
    // value's name in the legacy registry), and that of its MD5 digest. Null for other types.
    const char *imprivataPathKey = nullptr;
    const char *imprivataDigestKey = nullptr;

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
using C = Content;
using A = CopiedAs;

inline constexpr char pictures[] = "*.jpg *.jpeg *.gif *.png *.bmp";

// clang-format off
inline constexpr std::array rows{
    PackageType{"ppd",           "Printer Driver",        "*.ppd",
                P::Multi,  "ppd",           "Installing printer drivers...",            C::PrinterDriver},
    PackageType{"cert",          "Certificate",           "*.cer *.crt *.pem *.p12 *.der *.pfx",
                P::Multi,  "cert",          "Installing certificates...",               C::Certificate,
                A::BlankFreeOnStick},
    PackageType{"update",        "Firmware Update",       "*.tzupg *.tar",
                P::Single, "firmware",      "Installing firmware update...",            C::Firmware},
    PackageType{"ScreenConnect", "Screen Connect",        "ScreenConnect.ClientSetup.deb",
                P::Single, "ScreenConnect", "Installing Screen Connect...",             C::DebianPackage},
    PackageType{"wallpaper",     "Wallpaper",             pictures,
                P::Single, "wallpaper",     "Installing wallpaper...",                  C::Picture},
    PackageType{"icon",          "Icon",                  pictures,
                P::Single, "icon",          "Installing icon...",                       C::Picture},
    PackageType{"desktop",       "Desktop Image",         "*.jpg",
                P::Single, "desktop",       "Installing Desktop Image...",              C::Picture},
    PackageType{"screensaver",   "ScreenSaver",           "*.jpg",
                P::Single, "screensaver",   "Screensaver image(s)...",                  C::Picture},
    PackageType{"iwallpaper",    "Imprivata Wallpaper",   pictures,
                P::Single, "iwallpaper",    "Installing Imprivata Wallpaper Image...",  C::Picture,
                A::InFilesFolder, "Background",    "Background_MD5"},
    PackageType{"ilogo",         "Imprivata Login Image", "*.png",
                P::Single, "ilogo",         "Installing Imprivata Login Image...",      C::Picture,
                A::InFilesFolder, "CoBranding",    "CoBranding_MD5"},
    PackageType{"iproxcard",     "Imprivata Card Image",  "*.png",
                P::Single, "iproxcard",     "Installing Imprivata Card Image...",       C::Picture,
                A::InFilesFolder, "ProxCardImage", "ProxCardImage_MD5"},
    PackageType{"openvpn",       "OpenVPN",               "*.ovpn",
                P::Single, "openvpn",       "Installing OpenVPN client config...",      C::OpenVpnProfile},
    PackageType{"rdpfile",       "RDP file",              "*.rdp",
                P::Single, "rdpfile",       "Importing RDP file settings...",           C::RdpFile},
    PackageType{"disclaimer",    "Disclaimer",            "*.txt *.html",
                P::Single, "disclaimer",    "Importing disclaimer...",                  C::Disclaimer},
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

// The types in the order the main window lists them, which the stick check follows too: the
// table's order, sorted by display name as the toolkit's lists sort text (locale-aware, stable).
std::array<const PackageType *, count> inWindowOrder();

} // namespace PackageTypes

#endif
