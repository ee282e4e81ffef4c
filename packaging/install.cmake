# Install rules beyond the binaries: documentation, manual pages, the
# package's Debian files, the log rotation rule, example presets and the
# filter's system directories.
include(GNUInstallDirs)

install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN "man" EXCLUDE)
# The PPD source, for administrators who generate their own PPD files.  It
# goes with the documentation, not into the spooler's drv directory: the
# spooler lists every model of a .drv file there, so each model would be
# offered twice, once from it and once from the installed PPD files.
install(FILES ${CMAKE_SOURCE_DIR}/ppd/brellian.drv DESTINATION ${CMAKE_INSTALL_DOCDIR})

include(${CMAKE_SOURCE_DIR}/packaging/man.cmake)

# Copyright and changelog where Debian looks for them; the changelog is
# compressed without a time stamp so that a rebuild gives the same bytes.
install(FILES ${CMAKE_SOURCE_DIR}/packaging/debian/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/changelog.gz
  COMMAND ${GZIP} -9n -c ${CMAKE_SOURCE_DIR}/packaging/debian/changelog > ${CMAKE_BINARY_DIR}/changelog.gz
  DEPENDS ${CMAKE_SOURCE_DIR}/packaging/debian/changelog)
add_custom_target(brellian_changelog ALL DEPENDS ${CMAKE_BINARY_DIR}/changelog.gz)
install(FILES ${CMAKE_BINARY_DIR}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${CMAKE_SOURCE_DIR}/packaging/debian/lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides RENAME rastertobrellian)

# Weekly rotation of the log, run as the spooler's user.  The log lies in
# /var/log/brellian whatever the prefix, so the rule goes where logrotate
# reads it, /etc/logrotate.d, also for a build with another prefix.  An
# installed filter only: a build whose system paths lie in its own tree has
# no rotation.
if(BRELLIAN_SYSROOT STREQUAL "")
  install(FILES ${CMAKE_SOURCE_DIR}/packaging/logrotate/rastertobrellian DESTINATION /etc/logrotate.d)
endif()

# The configuration and log directories.  An installed filter runs as the
# spooler's user: it only reads below the configuration root and only writes
# the log directory.  Both exist before the first job, so the filter never
# has to create them itself.  A package does not carry them: its
# configuration step makes them (so that removing the package never meets
# the administrator's presets in a directory dpkg thinks it owns).  A direct
# install as root makes them here, with the log file given to the spooler's
# user.
if(BRELLIAN_SYSROOT STREQUAL "")
  install(CODE "
    if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
      foreach(dir ${BRELLIAN_CONF_DIR} ${BRELLIAN_CONF_DIR}/settings ${BRELLIAN_CONF_DIR}/uv ${BRELLIAN_CONF_DIR}/lut)
        file(MAKE_DIRECTORY \${dir})
        file(CHMOD \${dir} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
             WORLD_READ WORLD_EXECUTE)
      endforeach()
      file(MAKE_DIRECTORY ${BRELLIAN_LOG_DIR})
      file(CHMOD ${BRELLIAN_LOG_DIR} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
           GROUP_EXECUTE)
      if(NOT EXISTS ${BRELLIAN_LOG_DIR}/rastertobrellian.log)
        file(TOUCH ${BRELLIAN_LOG_DIR}/rastertobrellian.log)
        file(CHMOD ${BRELLIAN_LOG_DIR}/rastertobrellian.log PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
      endif()
      execute_process(COMMAND id -u lp RESULT_VARIABLE no_lp OUTPUT_QUIET ERROR_QUIET)
      if(no_lp EQUAL 0)
        execute_process(COMMAND chown lp:lp ${BRELLIAN_LOG_DIR} ${BRELLIAN_LOG_DIR}/rastertobrellian.log)
      endif()
    endif()")
endif()
