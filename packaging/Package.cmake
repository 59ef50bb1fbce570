# SPDX-License-Identifier: GPL-3.0-or-later

# The Debian package, which "cpack --preset release" creates from what is installed.

# What only a package contains: license and history.
configure_file(changelog.in changelog @ONLY)
add_custom_command(OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz"
    COMMAND gzip -9 -n -k -f changelog DEPENDS "${CMAKE_CURRENT_BINARY_DIR}/changelog" VERBATIM)
add_custom_target(plexa-changelog ALL DEPENDS "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz")
install(FILES copyright "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz" DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/plexa)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME plexa)
set(CPACK_PACKAGE_VENDOR "${PLEXA_COMPANY_NAME}")
set(CPACK_PACKAGE_CONTACT "${PLEXA_COMPANY_NAME} <${PLEXA_MAIL}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "watermarks photographs, many at a time")
set(CPACK_PACKAGE_DESCRIPTION "Plexa puts watermarks on photographs: a text that each photo completes from
its own metadata (author, date, camera, place), or a logo, placed and sized
relative to the photo. Copies keep the full quality, the metadata of the camera
and the right colors.
.
The package contains plexa, which has a window, and plexa-cli, which needs no
display.")
set(CPACK_PACKAGE_HOMEPAGE_URL "${PLEXA_WEB_SITE}")
set(CPACK_STRIP_FILES ON)
# The paths within the files are those on the user's machine.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The readers of some formats, which are loaded at run time, and the processes of the browser engine.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6webenginecore6-bin, qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, qt6-translations-l10n, qt6-wayland, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_OUTPUT_CONFIG_FILE "${PROJECT_BINARY_DIR}/CPackConfig.cmake")
include(CPack)
