#include "PackageTypes.h"

namespace {

using P = SelectionPage;
using R = InstallerRoutine;

const char *const kPictures = "*.jpg *.jpeg *.gif *.png *.bmp";

// clang-format off
const std::array<PackageType, 14> kTypes = {{
    {"ppd",           "Printer Driver",        "*.ppd",
     P::Multi,   1, "ppd",           "Installing printer drivers...",            R::PrinterDrivers, -1},
    {"cert",          "Certificate",           "*.cer *.crt *.pem *.p12 *.der *.pfx",
     P::Multi,   2, "cert",          "Installing certificates...",               R::Certificates,   -1},
    {"update",        "Firmware Update",       "*.tzupg *.tar",
     P::Single,  6, "firmware",      "Installing firmware update...",            R::Update,         -1},
    {"ScreenConnect", "Screen Connect",        "ScreenConnect.ClientSetup.deb",
     P::Single,  7, "ScreenConnect", "Installing Screen Connect...",             R::ScreenConnect,  -1},
    {"wallpaper",     "Wallpaper",             kPictures,
     P::Single,  3, "wallpaper",     "Installing wallpaper...",                  R::Wallpaper,      -1},
    {"icon",          "Icon",                  kPictures,
     P::Single,  4, "icon",          "Installing icon...",                       R::Icon,           -1},
    {"desktop",       "Desktop Image",         "*.jpg",
     P::Single,  8, "desktop",       "Installing Desktop Image...",              R::Desktop,        -1},
    {"screensaver",   "ScreenSaver",           "*.jpg",
     P::Single,  5, "screensaver",   "Screensaver image(s)...",                  R::Screensaver,    -1},
    {"iwallpaper",    "Imprivata Wallpaper",   kPictures,
     P::Single,  9, "iwallpaper",    "Installing Imprivata Wallpaper Image...",  R::ImprivataImage,  0},
    {"ilogo",         "Imprivata Login Image", "*.png",
     P::Single, 10, "ilogo",         "Installing Imprivata Login Image...",      R::ImprivataImage,  2},
    {"iproxcard",     "Imprivata Card Image",  "*.png",
     P::Single, 11, "iproxcard",     "Installing Imprivata Card Image...",       R::ImprivataImage,  1},
    {"openvpn",       "OpenVPN",               "*.ovpn",
     P::Single, 12, "openvpn",       "Installing OpenVPN client config...",      R::OpenVpn,        -1},
    {"rdpfile",       "RDP file",              "*.rdp",
     P::Single, 13, "rdpfile",       "Importing RDP file settings...",           R::RdpFile,        -1},
    {"disclaimer",    "Disclaimer",            "*.txt *.html",
     P::Single, 14, "disclaimer",    "Importing disclaimer...",                  R::Disclaimer,     -1},
}};
// clang-format on

} // namespace

QStringList PackageType::patternList() const
{
    return QString::fromLatin1(patterns).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString PackageType::iconPath() const
{
    return QStringLiteral(":/dax-icons/usbrc/%1.png").arg(typeKey());
}

QString PackageType::progressLabel() const
{
    return qstrcmp(progressKey, key) == 0 ? QString::fromLatin1(progressText) : QString();
}

namespace PackageTypes {

const std::array<PackageType, 14> &all()
{
    return kTypes;
}

const PackageType *find(const QString &key)
{
    for (const PackageType &type : kTypes) {
        if (key == QLatin1String(type.key))
            return &type;
    }
    return nullptr;
}

std::array<const PackageType *, 14> inListOrder()
{
    std::array<const PackageType *, 14> ordered{};
    for (const PackageType &type : kTypes)
        ordered[static_cast<size_t>(type.listOrder - 1)] = &type;
    return ordered;
}

} // namespace PackageTypes
