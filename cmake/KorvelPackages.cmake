# Debian packages, made by CPack of the components that are installed (scripts/package). Only for the preset "package":
# what belongs to Debian alone is not part of an installed tree.
option(KORVEL_DEBIAN_PACKAGES "Install what Debian packages need beside the program's files" OFF)
if(NOT KORVEL_DEBIAN_PACKAGES)
  return()
endif()

set(maintainer "Korvel Audit Viewer contributors <maintainers@korvel.invalid>")
set(revision 1)
set(debian_version "${PROJECT_VERSION}-${revision}")

# The package of each component.
set(package_of_library libkorvel-audit-viewer1)
set(package_of_development libkorvel-audit-viewer-dev)
set(package_of_viewer korvel-audit-viewer)
set(package_of_tool korvel-audit)
set(components library development viewer tool)

# What each package says of itself and of its changes.
string(TIMESTAMP epoch "%s")
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(epoch "$ENV{SOURCE_DATE_EPOCH}")
endif()
execute_process(COMMAND date --utc --rfc-email "--date=@${epoch}" OUTPUT_VARIABLE changed_at
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(READ "${PROJECT_SOURCE_DIR}/LICENSE" licence)
string(REGEX REPLACE "^MIT License\n\nCopyright [^\n]*\n\n" "" licence "${licence}")
string(STRIP "${licence}" licence)
string(REGEX REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REGEX REPLACE "\n" "\n " licence " ${licence}")
set(about "${PROJECT_BINARY_DIR}/debian")
file(CONFIGURE OUTPUT "${about}/copyright" @ONLY CONTENT
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: Korvel Audit Viewer

Files: *
Copyright: 2026 Korvel Audit Viewer contributors
License: Expat

License: Expat
@licence@
")
foreach(component IN LISTS components)
  set(package "${package_of_${component}}")
  file(CONFIGURE OUTPUT "${about}/${package}/changelog.Debian" @ONLY CONTENT
"korvel-audit-viewer (@debian_version@) bookworm; urgency=medium

  * Built from the sources of version @PROJECT_VERSION@; CHANGELOG.md there
    says what has changed.

 -- @maintainer@  @changed_at@
")
  execute_process(COMMAND gzip --force --best --no-name "${about}/${package}/changelog.Debian" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${about}/${package}/changelog.Debian.gz" "${about}/copyright"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
  set(overrides "${PROJECT_SOURCE_DIR}/packaging/lintian/${package}")
  if(EXISTS "${overrides}")
    install(FILES "${overrides}" DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT ${component})
  endif()
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/PackageTimes.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${maintainer}")
set(CPACK_DEBIAN_PACKAGE_RELEASE ${revision})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
# CPack leaves both out: for a library it only writes scripts that call ldconfig.
file(WRITE "${about}/shlibs" "libKorvelAuditViewerOCX ${PROJECT_VERSION_MAJOR} ${package_of_library} (>= ${PROJECT_VERSION})\n")
file(WRITE "${about}/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${about}/shlibs;${about}/triggers")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
foreach(component IN LISTS components)
  string(TOUPPER "${component}" upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${package_of_${component}}")
endforeach()

set(reads
"Plant-supervision software records every change that people and components
make. Korvel Audit Viewer shows these records: by category and date, filtered,
searched, and compared with a copy from before. It only reads.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "control for reading audit trails of regulated plants
${reads}
.
This package has the control that programs with Qt place in their windows.")
# Drivers are found when a server is asked; trails in files need none.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "tdsodbc | odbc-driver")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SUGGESTS "krb5-user")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "control for reading audit trails - development files
${reads}
.
This package has the headers of the control, what CMake and pkg-config need to
find it, and the plug-in for Qt Designer.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${package_of_library} (= ${debian_version}), qt6-base-dev (>= 6.4)")

set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION database)
set(CPACK_COMPONENT_VIEWER_DESCRIPTION "viewer for the audit trails of regulated plants
${reads}
.
This package has the window for people, with its help in five languages.")
set(CPACK_DEBIAN_VIEWER_PACKAGE_DEPENDS "${package_of_library} (= ${debian_version})")
set(CPACK_DEBIAN_VIEWER_PACKAGE_RECOMMENDS "korvel-audit, xdg-utils, fonts-droid-fallback | fonts-noto-cjk")
set(CPACK_DEBIAN_VIEWER_PACKAGE_SUGGESTS "qt6-wayland")

set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION database)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "audit trails of regulated plants on the command line
${reads}
.
This package has the tool for scripts: queries, exports with evidence, reviews,
snapshots, demonstration data and a self-test.")
set(CPACK_DEBIAN_TOOL_PACKAGE_RECOMMENDS "tdsodbc | odbc-driver")
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "korvel-audit-viewer, krb5-user")

include(CPack)
