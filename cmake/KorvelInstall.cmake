# Where things are installed. All paths are relative to the prefix, and installed files find each other by relative
# paths: an installed tree can be moved.

# The help's books and the procedure's script.
set(KORVEL_INSTALL_DATADIR "${CMAKE_INSTALL_DATADIR}/korvel-audit-viewer")
set(KORVEL_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/KorvelAuditViewer")
# Qt's folder of plug-ins below the prefix, as Debian has it.
set(KORVEL_INSTALL_QT_PLUGINDIR "${CMAKE_INSTALL_LIBDIR}/qt6/plugins" CACHE STRING
  "Where Qt's plug-ins are installed, relative to the prefix")

# Programs find the control's library beside themselves, unless it is in a folder of the system.
file(RELATIVE_PATH library_from_programs "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(KORVEL_RPATH_OF_PROGRAMS "$ORIGIN/${library_from_programs}")
file(RELATIVE_PATH library_from_designer "/${KORVEL_INSTALL_QT_PLUGINDIR}/designer" "/${CMAKE_INSTALL_LIBDIR}")
string(REGEX REPLACE "/$" "" library_from_designer "${library_from_designer}")
set(KORVEL_RPATH_OF_DESIGNER_PLUGIN "$ORIGIN/${library_from_designer}")
