# The application's Info.plist. Run as a script, it writes one for the given settings:
#   cmake -DQUORVEL_VERSION=1.2 -DQUORVEL_BUILD_NUMBER=7 [-DQUORVEL_UPDATE_FEED=ADDRESS]
#         [-DQUORVEL_UPDATE_KEY=KEY] [-DCMAKE_OSX_DEPLOYMENT_TARGET=13.0] -DOUTPUT=FILE
#         -P cmake/QuorvelInfoPlist.cmake
include("${CMAKE_CURRENT_LIST_DIR}/QuorvelMinimumMacOS.cmake")

# quorvel_build_number(VARIABLE): increases with every commit. It distinguishes updates.
function(quorvel_build_number variable)
  set(number 1)
  find_package(Git QUIET)
  if(GIT_FOUND)
    execute_process(COMMAND "${GIT_EXECUTABLE}" rev-list --count HEAD
      WORKING_DIRECTORY "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/.."
      OUTPUT_VARIABLE count RESULT_VARIABLE failed OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(NOT failed)
      set(number "${count}")
    endif()
  endif()
  set(${variable} "${number}" PARENT_SCOPE)
endfunction()

# Appends an entry to the variable unless the text is empty.
function(quorvel_plist_entry variable key text)
  if(NOT text STREQUAL "")
    string(REPLACE "&" "&amp;" text "${text}")
    string(REPLACE "<" "&lt;" text "${text}")
    string(REPLACE ">" "&gt;" text "${text}")
    set(${variable} "${${variable}}\n\t<key>${key}</key>\n\t<string>${text}</string>" PARENT_SCOPE)
  endif()
endfunction()

# quorvel_write_info_plist(FILE)
function(quorvel_write_info_plist file)
  if(NOT QUORVEL_BUILD_NUMBER MATCHES "^[0-9]+(\\.[0-9]+)?(\\.[0-9]+)?$")
    message(FATAL_ERROR "QUORVEL_BUILD_NUMBER must be one to three numbers with points between "
      "them, not \"${QUORVEL_BUILD_NUMBER}\"")
  endif()
  if(NOT "${QUORVEL_UPDATE_KEY}" STREQUAL "" AND "${QUORVEL_UPDATE_FEED}" STREQUAL "")
    message(FATAL_ERROR "QUORVEL_UPDATE_KEY is of no use without QUORVEL_UPDATE_FEED")
  endif()
  set(QUORVEL_UPDATE_ENTRIES "")
  quorvel_plist_entry(QUORVEL_UPDATE_ENTRIES SUFeedURL "${QUORVEL_UPDATE_FEED}")
  quorvel_plist_entry(QUORVEL_UPDATE_ENTRIES SUPublicEDKey "${QUORVEL_UPDATE_KEY}")
  set(QUORVEL_MINIMUM_MACOS "${CMAKE_OSX_DEPLOYMENT_TARGET}")
  configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../packaging/Info.plist.in" "${file}" @ONLY)
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  quorvel_write_info_plist("${OUTPUT}")
endif()
