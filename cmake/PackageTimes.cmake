# Run by CPack before it packs: gives what was installed the time of the sources, so that equal sources give equal
# packages.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find "${CPACK_TEMPORARY_INSTALL_DIRECTORY}" -exec touch --no-dereference "--date=@$ENV{SOURCE_DATE_EPOCH}" {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
