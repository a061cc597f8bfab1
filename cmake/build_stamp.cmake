# Writes what a build is told from: the revision of its sources and the date. -P, with SOURCE and OUTPUT.
execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --abbrev=12 --exclude=*
  OUTPUT_VARIABLE revision OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT revision)
  set(revision "unknown")
endif()
# SOURCE_DATE_EPOCH, where it is set.
string(TIMESTAMP date "%Y-%m-%d" UTC)
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT [[
inline constexpr char buildRevision[] = "@revision@";
inline constexpr char buildDate[] = "@date@";
]] @ONLY)
