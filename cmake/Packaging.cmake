# Debian package: `cpack -G DEB` in a build directory makes usb-installer_<version>_<arch>.deb
# from what `cmake --install` installs: the program, the stick check and their documentation.
set(USBINSTALLER_MAINTAINER "USB Installer maintainers <usb-installer@example.org>"
    CACHE STRING "Maintainer field of the Debian package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME usb-installer)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${USBINSTALLER_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "installs drivers, certificates, pictures and settings from a USB stick")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "USB Installer is started by the thin client with the directory where an\n"
    "administrator's USB stick is mounted. It lists the printer drivers,\n"
    "certificates, firmware updates, pictures, VPN and RDP configurations and\n"
    "disclaimer it finds there, by package type, and installs what the\n"
    "administrator picks into the client's configuration.\n"
    "usb-stick-check tells beforehand, on any machine and without root, what\n"
    "a stick would offer and exactly what each installation would do.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
if(USBINSTALLER_VENDOR_PLATFORM)
    # The client supplies its platform library, which no Debian package provides.
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt5widgets5 (>= 5.15), libqt5gui5 (>= 5.15), libqt5core5a (>= 5.15)")
else()
    # dpkg-shlibdeps derives the dependencies (Qt 5, libsodium, the C and C++ runtimes).
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

include(CPack)
