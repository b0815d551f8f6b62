# SPDX-License-Identifier: GPL-3.0-or-later
#
# `cpack -G DEB` in a build tree configured with CMAKE_INSTALL_PREFIX=/usr makes the Debian
# package; scripts/package.sh does exactly that from a fresh tree with Debian's default flags.
set(CPACK_PACKAGE_NAME vorlane)
set(CPACK_PACKAGE_VENDOR "The Vorlane developers")
# From packaging/CMakeLists.txt: the packager, never an address invented for a project without one.
# Vorlane has no web site either, so the package names no homepage.
set(CPACK_PACKAGE_CONTACT "${VORLANE_MAINTAINER}")
# Debian's synopsis: a phrase without a leading article, after "vorlane - ".
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_GENERATOR DEB)
# The package installs what `cmake --install` of this very tree installs, under the prefix the
# tree was configured with: the systemd unit names the program by that path, and the PAM service
# goes to /etc/pam.d whatever the prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The long description; CPack puts the summary above it and indents every line by one space.
# Lines of at most 72 characters, so that they stay within 80 wherever dpkg and apt show them.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Vorlane keeps what a freelancer runs for each client: servers, hosting
accounts, control panels, domains, mailboxes, databases, cloud accounts,
SSH and FTP access and API keys, with their addresses, logins, renewal
dates and costs. Passwords and API keys stay in the desktop's Secret
Service (GNOME Keyring, KWallet, KeePassXC), never in the vault file, and
are shown only after the user's system password. Nothing leaves the
machine.")
# dpkg-shlibdeps works out the libraries the programs link. What they load at run time is named
# here: the SVG plugin and the Breeze theme draw every icon of the window.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, breeze-icon-theme")
# A Secret Service to keep the passwords in; wl-copy clears a copied password on Wayland, where a
# window out of focus cannot touch the clipboard; the Wayland platform plugin runs the window as a
# native Wayland client, with the application id.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gnome-keyring | kwalletmanager, wl-clipboard, qt6-wayland")
# The PAM service is a configuration file the administrator may edit (to add a fingerprint
# module, say): dpkg keeps their changes on upgrade and leaves the file on removal until purge.
file(WRITE "${PROJECT_BINARY_DIR}/cpack/conffiles" "${VORLANE_PAM_DIR}/vorlane\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/cpack/conffiles")

include(CPack)
