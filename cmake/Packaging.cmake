# CPack: the Debian package; on macOS a disk image to drag the application from. In the build directory,
# `cpack` writes vantrel_<version>_amd64.deb, or Vantrel-<version>.dmg on macOS.
set(VANTREL_MAINTAINER "Vantrel developers <dev@vantrel.invalid>"
    CACHE STRING "Maintainer field of the Debian package")

set(CPACK_PACKAGE_NAME vantrel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Vantrel developers")
# The licence as an SPDX identifier, and its text for the generators that show one.
set(CPACK_RPM_PACKAGE_LICENSE ${VANTREL_LICENSE})
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Codex account limits and system load in a small panel")
set(CPACK_PACKAGE_DESCRIPTION
    "Vantrel is a small desktop utility with a tray item and a dark floating panel
at the bottom right of the screen. In Czech, the panel shows what remains of
the Codex account's short-term and long-term usage limits, when each resets,
a spend-control stop and the credit balance, together with the load of the
computer, sampled every 2 seconds: total and per-core CPU, RAM, GPU and the
primary network link.

The limits are read through the Codex CLI, which must be installed and signed
in.")

if(APPLE)
  # Vantrel.app at the top of the image, beside a link to /Applications.
  set(CPACK_GENERATOR DragNDrop)
  set(CPACK_PACKAGE_FILE_NAME Vantrel-${PROJECT_VERSION})
  set(CPACK_DMG_VOLUME_NAME Vantrel)
  set(CPACK_DMG_FORMAT UDZO)
  set(CPACK_PACKAGING_INSTALL_PREFIX /)
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Debian policy: binaries stripped, directories 0755 whatever the umask of whoever builds the package.
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${VANTREL_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# dpkg-shlibdeps names the packages of every shared library the program links (Qt 6, ICU, X, C++
# runtime); the limits script adds the interpreter.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS python3)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

if(VANTREL_SYSTEM_AUTOSTART)
  # A file under /etc must be a conffile, so that a user's edit survives upgrades.
  set(conffiles ${CMAKE_BINARY_DIR}/cpack/conffiles)
  file(WRITE ${conffiles} "/etc/xdg/autostart/${VANTREL_APP_ID}.desktop\n")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${conffiles})
endif()

include(CPack)
