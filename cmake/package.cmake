# The Debian package: cpack --config build/release/CPackConfig.cmake
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrel)
set(CPACK_PACKAGE_VENDOR "Kestrel maintainers")
set(CPACK_PACKAGE_CONTACT "Kestrel maintainers <maintainers@kestrel.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "control program for the KESTREL chip programmers")
set(CPACK_PACKAGE_DESCRIPTION
"Kestrel reads, blank-checks, verifies and programs memory chips on a KESTREL-4,
KESTREL-5 or KESTREL-6 board, which hangs on a PC parallel port: UV EPROMs from
2732 to 27C080, 28C256 EEPROMs, 5 V and 12 V flash, and 24Cxx serial EEPROMs.

The package has the window program and its command-line twin. Both work on a
simulated board as well, with no hardware connected.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "bash-completion")
if(TARGET kestrel)
  # The icons are SVG, which Qt reads with a plug-in: no program is linked with it, so it is not
  # found among the shared libraries.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-wayland")
endif()
include(CPack)
