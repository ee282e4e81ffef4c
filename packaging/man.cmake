# Manual pages.  A program with a --help text gets its page made from that
# text by help2man at build time, so that the two always say the same; a
# program without one (the filter, run by the spooler) has its page written
# as troff in docs/man/<program>.<section>.  Every page is compressed and
# installed into share/man/man<section>.
#
# To add a program: append "target|section|one-line summary" to
# BRELLIAN_HELP_MAN_PAGES (its --help must print the usage to standard
# output and exit 0), or drop its troff page into docs/man.
include(GNUInstallDirs)

set(BRELLIAN_HELP_MAN_PAGES
  "brellian-jobdump|1|check a job command stream, list its records, write its panels as PNG"
  "brellian-rasterwrite|1|write a CUPS raster stream from PNG files or generated pages"
  "brellian-samplecard|1|write the sample card job as CUPS raster"
  "brellian-settings|1|create, show, export, import and change a printer's settings file"
  "brellian-uvimage|1|make UV preset files from PNG pictures, show, install and check them"
  "brellian-lut|1|check colour lookup table files and write identity or gamma tables"
  "brellian-preview|1|show what a job will print, one picture per card side"
  "brellian-batch|1|print a batch of cards, one job per card, each card exactly once"
  "usbbr|8|CUPS backend for Brellian ID-card printers on USB"
  ${BRELLIAN_EXTRA_HELP_MAN_PAGES})

find_program(HELP2MAN help2man)
# The pages are dated by the package's latest changelog entry, not by the
# day of the build, so that a rebuild gives the same pages.
file(STRINGS ${CMAKE_SOURCE_DIR}/packaging/debian/changelog brellian_trailer REGEX "^ -- " LIMIT_COUNT 1)
string(REGEX REPLACE "^.*>  " "" brellian_changelog_date "${brellian_trailer}")
execute_process(COMMAND date -u -d "${brellian_changelog_date}" +%s
                OUTPUT_VARIABLE BRELLIAN_MAN_DATE OUTPUT_STRIP_TRAILING_WHITESPACE)
find_program(GZIP gzip REQUIRED)
set(BRELLIAN_MAN_DIR ${CMAKE_BINARY_DIR}/man)
set(brellian_man_outputs "")

# 'brellian_man_install()' - Compress page (a file in the build tree) and
# install it into its section's directory.
function(brellian_man_install page section)
  add_custom_command(OUTPUT ${page}.gz
    COMMAND ${GZIP} -9nkf ${page}
    DEPENDS ${page} VERBATIM)
  install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
  set(brellian_man_outputs ${brellian_man_outputs} ${page}.gz PARENT_SCOPE)
endfunction()

if(HELP2MAN)
  foreach(entry ${BRELLIAN_HELP_MAN_PAGES})
    string(REPLACE "|" ";" fields "${entry}")
    list(GET fields 0 target)
    list(GET fields 1 section)
    list(GET fields 2 summary)
    if(NOT TARGET ${target})
      continue()
    endif()
    set(page ${BRELLIAN_MAN_DIR}/${target}.${section})
    set(include_file ${CMAKE_SOURCE_DIR}/packaging/man/common.h2m)
    add_custom_command(OUTPUT ${page}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${BRELLIAN_MAN_DIR}
      COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 SOURCE_DATE_EPOCH=${BRELLIAN_MAN_DATE}
              ${HELP2MAN} --no-info --no-discard-stderr --section=${section} --name=${summary}
              --version-string=${PROJECT_VERSION} --include=${include_file} --output=${page}
              $<TARGET_FILE:${target}>
      DEPENDS ${target} ${include_file} VERBATIM)
    brellian_man_install(${page} ${section})
  endforeach()
else()
  message(STATUS "help2man not found: the tools' manual pages are not built")
endif()

file(GLOB brellian_troff_pages ${CMAKE_SOURCE_DIR}/docs/man/*.[1-8])
foreach(source ${brellian_troff_pages})
  get_filename_component(name ${source} NAME)
  string(REGEX REPLACE ".*\\.([1-8])$" "\\1" section ${name})
  set(page ${BRELLIAN_MAN_DIR}/${name})
  configure_file(${source} ${page} @ONLY)
  brellian_man_install(${page} ${section})
endforeach()

add_custom_target(brellian_man ALL DEPENDS ${brellian_man_outputs})
set(BRELLIAN_MAN_PAGES ${brellian_man_outputs})

# The test build checks every page and that each tool's page shows the
# usage line of its --help.  Its tools name paths inside the build tree,
# which are longer than a line of 80 columns, so its pages are rendered
# wider; the package check renders the installed pages at 80 columns.
find_program(BRELLIAN_MAN_VIEWER man)
if(BRELLIAN_BUILD_TESTS AND HELP2MAN AND BRELLIAN_MAN_VIEWER)
  set(brellian_man_programs "")
  foreach(entry ${BRELLIAN_HELP_MAN_PAGES})
    string(REPLACE "|" ";" fields "${entry}")
    list(GET fields 0 target)
    if(TARGET ${target})
      list(APPEND brellian_man_programs $<TARGET_FILE:${target}>)
    endif()
  endforeach()
  set(brellian_man_width 80)
  if(NOT BRELLIAN_SYSROOT STREQUAL "")
    set(brellian_man_width 250)
  endif()
  add_test(NAME ManPages.RenderWithoutWarningsAndShowEachToolsUsage
           COMMAND ${CMAKE_COMMAND} -E env MANWIDTH=${brellian_man_width}
                   bash ${CMAKE_SOURCE_DIR}/scripts/check-man.sh ${BRELLIAN_MAN_DIR} ${brellian_man_programs})
  set_tests_properties(ManPages.RenderWithoutWarningsAndShowEachToolsUsage PROPERTIES LABELS tools)
endif()
