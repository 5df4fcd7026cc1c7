#ifndef CLIENTPATHS_H
#define CLIENTPATHS_H

#include <QString>

#include <array>
#include <cstddef>

// Where the client keeps what is installed on it.
namespace clientpaths {

// The client's files folder in its configuration tree: what lies there survives a restart once
// the tree has been frozen.
inline QString filesDir()
{
    return QStringLiteral("/tmp/config/files");
}

// The names the installers use at the top of filesDir(), files and folders: the tree's own.
enum class TreeName {
    DesktopLink,    // a link the desktop installer points at its picture
    CitrixDesktop,  // the Citrix desktop's picture
    WallpaperLink,  // a link the wallpaper installer points at its picture
    Disclaimer,     // the log-in disclaimer
    DriverDatabase, // the printer driver database
    LaunchPad,      // folders
    Certificates,
    Icons,
    Wallpapers,
    Screensaver,
    OpenVpn,
    Drivers,
};

inline constexpr std::array<const char *, 12> treeNames{
    "desktop_img.jpg", "citrix-desktop.jpg", "default_wp", "disclaimer.txt",
    "printdrivers.db", "launchpad",          "cacerts",    "icons",
    "wallpapers",      "screensaver",        "openvpn",    "ppd",
};

inline QString inTree(TreeName name)
{
    return filesDir() + QLatin1Char('/') +
           QLatin1String(treeNames.at(static_cast<std::size_t>(name)));
}

// A file copied to the top of the tree under this name would replace, or write through, one
// of the tree's own files.
inline bool isTreeName(const QString &name)
{
    for (const char *own : treeNames) {
        if (name == QLatin1String(own))
            return true;
    }
    return false;
}

} // namespace clientpaths

#endif
