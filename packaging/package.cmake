# A Debian package of the filter, its PPD files, tools and documentation,
# built with "cpack -G DEB" from a build configured with
# -DCMAKE_INSTALL_PREFIX=/usr.
set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "rastertobrellian")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The rastertobrellian authors")
set(CPACK_PACKAGE_CONTACT "rastertobrellian maintainers <maintainers@rastertobrellian.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "CUPS raster filter for Brellian retransfer ID-card printers")
set(CPACK_PACKAGE_DESCRIPTION
    "rastertobrellian turns CUPS raster pages into the job command stream of\nBrellian retransfer ID-card printers (models 1030, 1035 and 1060).\nIt ships the filter, the PPD files, the job-stream inspector, the\npreset tools and brellian-printer-app, an IPP Everywhere printer\napplication for driverless clients with a web page for the presets.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# A printer driver with its administration tools: "utils" (hardware
# support utilities); see docs/packaging.md.
set(CPACK_DEBIAN_PACKAGE_SECTION "utils")
set(CPACK_DEBIAN_PACKAGE_PRIORITY "optional")
# Library dependencies are worked out from the binaries; the spooler and the
# upstream filters that turn documents into CUPS raster are named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "cups, cups-filters")
# The log rotation rule is read by logrotate, present on most systems;
# avahi-daemon announces the printer application's printers (DNS-SD).
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "logrotate, avahi-daemon")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    "${CMAKE_SOURCE_DIR}/packaging/debian/postinst;${CMAKE_SOURCE_DIR}/packaging/debian/postrm;${CMAKE_SOURCE_DIR}/packaging/debian/conffiles")
# Programs are shipped without their symbol tables.
set(CPACK_STRIP_FILES TRUE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
include(CPack)
