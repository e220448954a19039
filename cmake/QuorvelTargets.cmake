# What all targets share: the language, the warnings, the sanitizers.

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

# macOS is "macos" in file names, every other system is "linux".
if(APPLE)
  set(QUORVEL_SYSTEM macos)
else()
  set(QUORVEL_SYSTEM linux)
endif()

find_program(QUORVEL_CCACHE ccache)
if(QUORVEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QUORVEL_CCACHE}")
endif()

add_library(quorvel_options INTERFACE)
target_include_directories(quorvel_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(quorvel_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -ffunction-sections -fdata-sections
  # GCC 12 reports overlapping copies in std::string's own code by mistake.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${QUORVEL_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(quorvel_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_CONTEXTLESS_CONNECT
  QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_KEYWORDS)
# The hardening that distributions use. Sanitizers check more, and so replace it.
if(NOT APPLE AND NOT QUORVEL_SANITIZE)
  set(hardening -fstack-protector-strong -fstack-clash-protection
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  # Each processor has its own way to check the targets of jumps.
  foreach(flag -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "QUORVEL_HAS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
      list(APPEND hardening ${flag})
    endif()
  endforeach()
  target_compile_options(quorvel_options INTERFACE "$<$<CONFIG:Release>:${hardening}>")
  target_link_options(quorvel_options INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()

if(QUORVEL_SANITIZE)
  target_compile_options(quorvel_options INTERFACE
    -fsanitize=${QUORVEL_SANITIZE} -fno-omit-frame-pointer
    # GCC mistakes the sanitizers' own checks for uses of uninitialised or out-of-bounds memory.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized;-Wno-array-bounds;-Wno-stringop-overflow>)
  if(QUORVEL_SANITIZE MATCHES undefined)
    target_compile_options(quorvel_options INTERFACE -fno-sanitize-recover=undefined)
  endif()
  target_link_options(quorvel_options INTERFACE -fsanitize=${QUORVEL_SANITIZE})
endif()

if(QUORVEL_FUZZERS)
  # The fuzzer follows every branch of our code, libraries included.
  target_compile_options(quorvel_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(quorvel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Only the libraries that a program really uses become its dependencies: the runner stays small.
if(APPLE)
  target_link_options(quorvel_options INTERFACE LINKER:-dead_strip LINKER:-dead_strip_dylibs)
else()
  target_link_options(quorvel_options INTERFACE LINKER:--as-needed LINKER:--gc-sections)
endif()

# quorvel_library(NAME SOURCES... ): one layer, or a part of one.
function(quorvel_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PUBLIC quorvel_options)
endfunction()

# quorvel_compile_for_size(SOURCES...): for what runs once when a clone starts. Each clone has a copy.
function(quorvel_compile_for_size)
  set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS $<$<CONFIG:Release>:-Os>)
endfunction()

# quorvel_executable(NAME SOURCES...)
function(quorvel_executable name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE quorvel_options)
  if(QUORVEL_SANITIZE)
    target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/SanitizerSuppressions.cpp")
  endif()
endfunction()

# quorvel_version(SOURCES...): defines QUORVEL_VERSION in these alone, since a new version compiles
# them again.
function(quorvel_version)
  set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_DEFINITIONS
    QUORVEL_VERSION="${PROJECT_VERSION}")
endfunction()
