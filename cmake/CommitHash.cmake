# Writes the commit that is built into OUTPUT, only when it changed. Run at every build: cmake -DSOURCE=... -DOUTPUT=... -P
set(hash 0000000)
find_package(Git QUIET)
if(GIT_FOUND)
  execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --show-toplevel
                  WORKING_DIRECTORY ${SOURCE} OUTPUT_VARIABLE top OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --verify HEAD
                  WORKING_DIRECTORY ${SOURCE} OUTPUT_VARIABLE head OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  file(REAL_PATH "${SOURCE}" source)
  # A copy of the sources inside somebody else's checkout has no commit of its own.
  if(top STREQUAL source AND head MATCHES "^[0-9a-f]+$")
    string(SUBSTRING ${head} 0 7 hash)
  endif()
endif()
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "#define FILTERPROCESSOR_COMMIT_HASH \"${hash}\"\n" @ONLY)
