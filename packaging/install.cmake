# Install rules beyond the binaries: documentation, example presets and the
# filter's system directories.
include(GNUInstallDirs)

install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN "man" EXCLUDE)
if(EXISTS ${CMAKE_SOURCE_DIR}/docs/man)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
          FILES_MATCHING PATTERN "*.1")
endif()
# The PPD source, for administrators who generate their own PPD files.  It
# goes with the documentation, not into the spooler's drv directory: the
# spooler lists every model of a .drv file there, so each model would be
# offered twice, once from it and once from the installed PPD files.
install(FILES ${CMAKE_SOURCE_DIR}/ppd/brellian.drv DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The configuration and log directories.  An installed filter runs as the
# spooler's user: it only reads below the configuration root and only writes
# the log directory.  Both exist before the first job, so the filter never
# has to create them itself.  DESTDIR builds (packages) get the directories;
# ownership of the log directory is given to the spooler's user by the
# package's maintainer script or, for a direct install as root, here.
if(BRELLIAN_SYSROOT STREQUAL "")
  install(DIRECTORY DESTINATION ${BRELLIAN_CONF_DIR}
          DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                WORLD_READ WORLD_EXECUTE)
  foreach(sub settings uv lut)
    install(DIRECTORY DESTINATION ${BRELLIAN_CONF_DIR}/${sub}
            DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                  WORLD_READ WORLD_EXECUTE)
  endforeach()
  install(DIRECTORY DESTINATION ${BRELLIAN_LOG_DIR}
          DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE)
  install(CODE "
    if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
      execute_process(COMMAND id -u lp RESULT_VARIABLE no_lp OUTPUT_QUIET ERROR_QUIET)
      if(no_lp EQUAL 0)
        execute_process(COMMAND chown lp:lp ${BRELLIAN_LOG_DIR})
      endif()
    endif()")
endif()
