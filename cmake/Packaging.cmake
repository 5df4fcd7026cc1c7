# Debian packages: `cpack -G DEB` in a build directory makes, from one source, two binary
# packages of what `cmake --install` installs: usb-installer_<version>_<arch>.deb (the program
# for the client) and usb-stick-check_<version>_<arch>.deb (the check for administrators'
# machines, with the content readers' libraries), each with its man page, copyright and
# changelog, so that the client's installer keeps only its own dependencies.
set(USBINSTALLER_MAINTAINER "USB Installer maintainers <usb-installer@example.org>"
    CACHE STRING "Maintainer field of the Debian packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME usb-installer)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${USBINSTALLER_MAINTAINER}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL installer)
if(TARGET usb-stick-check)
    list(APPEND CPACK_COMPONENTS_ALL check)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE usb-installer)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_DEBIAN_INSTALLER_PACKAGE_NAME usb-installer)
set(CPACK_COMPONENT_INSTALLER_DESCRIPTION
    "installs drivers, certificates, pictures and settings from a USB stick\n"
    "USB Installer is started by the thin client with the directory where an\n"
    "administrator's USB stick is mounted. It lists the printer drivers,\n"
    "certificates, firmware updates, pictures, VPN and RDP configurations and\n"
    "disclaimer it finds there, by package type, and installs what the\n"
    "administrator picks into the client's configuration.")
set(CPACK_DEBIAN_CHECK_PACKAGE_NAME usb-stick-check)
set(CPACK_COMPONENT_CHECK_DESCRIPTION
    "tells what a USB stick would install on a thin client\n"
    "usb-stick-check tells beforehand, on any machine and without root, what\n"
    "an administrator's USB stick would offer to USB Installer on a thin\n"
    "client, exactly what each installation would do, and whether each file's\n"
    "content is what its type needs: certificates, pictures, printer drivers,\n"
    "VPN and RDP profiles, firmware archives and packages.")
string(REPLACE ";" "" CPACK_COMPONENT_INSTALLER_DESCRIPTION "${CPACK_COMPONENT_INSTALLER_DESCRIPTION}")
string(REPLACE ";" "" CPACK_COMPONENT_CHECK_DESCRIPTION "${CPACK_COMPONENT_CHECK_DESCRIPTION}")

if(USBINSTALLER_VENDOR_PLATFORM)
    # The client supplies its platform library, which no Debian package provides.
    set(CPACK_DEBIAN_INSTALLER_PACKAGE_DEPENDS
        "libqt5widgets5 (>= 5.15), libqt5gui5 (>= 5.15), libqt5core5a (>= 5.15)")
    set(CPACK_DEBIAN_CHECK_PACKAGE_SHLIBDEPS ON)
else()
    # dpkg-shlibdeps derives the dependencies (Qt 5, libsodium, libarchive, libcrypto, the C and
    # C++ runtimes) of each package from its own program.
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

include(CPack)
