# Functions that build a room, a program and a test.

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# All libraries but libc, OpenSSL, expat and ICU's data are linked statically, which halves the time of a
# run. libc, OpenSSL and expat, which reads foreign files, stay shared, so that programs receive their
# security updates. docs/decisions/0006 has the figures.
find_package(OpenSSL REQUIRED)
find_package(EXPAT REQUIRED)
set(kivo_shared_suffixes ${CMAKE_FIND_LIBRARY_SUFFIXES})
if(KIVO_STATIC_LIBRARIES)
  set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
endif()
find_package(SQLite3 REQUIRED)
find_package(ICU 72 REQUIRED COMPONENTS i18n uc)
target_link_libraries(ICU::i18n INTERFACE ICU::uc)  # an archive comes before those it needs
find_package(PkgConfig REQUIRED)
pkg_check_modules(DBus REQUIRED IMPORTED_TARGET dbus-1)
set(CMAKE_FIND_LIBRARY_SUFFIXES ${kivo_shared_suffixes})
# Shared, since kivo-server alone uses them.
pkg_check_modules(QrEncode REQUIRED IMPORTED_TARGET libqrencode)
pkg_check_modules(Pq REQUIRED IMPORTED_TARGET libpq)

find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(CLI11 REQUIRED)

add_library(kivo_warnings INTERFACE)
# Files that are compiled as one see each other's names, and get warnings that none of them gets alone.
target_compile_options(kivo_warnings INTERFACE $<$<BOOL:${CMAKE_UNITY_BUILD}>:-w>)
target_compile_options(kivo_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast)
# When optimising, g++ 12 reports an overlap in its own std::string where there is none. Set only there:
# clang-tidy reads the dev build's options and does not know this one.
target_compile_options(kivo_warnings INTERFACE
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:MinSizeRel>>:-Wno-restrict>)
if(KIVO_WARNINGS_ARE_ERRORS)
  target_compile_options(kivo_warnings INTERFACE -Werror)
endif()

add_library(kivo_sanitizers INTERFACE)
if(KIVO_SANITIZERS)
  target_compile_options(kivo_sanitizers INTERFACE -fsanitize=${KIVO_SANITIZERS}
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kivo_sanitizers INTERFACE -fsanitize=${KIVO_SANITIZERS})
  # clang 14 cannot add this check to the parts of a coroutine: "Cannot represent a difference across
  # sections".
  target_compile_options(kivo_sanitizers INTERFACE $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
endif()
if(KIVO_SANITIZERS MATCHES "thread")
  # Makes Asio's reference counts use no fences, which this sanitizer does not understand.
  target_compile_definitions(kivo_sanitizers INTERFACE BOOST_ASIO_DISABLE_STD_ATOMIC)
endif()
if(KIVO_COVERAGE)
  target_compile_options(kivo_sanitizers INTERFACE --coverage)
  target_link_options(kivo_sanitizers INTERFACE --coverage)
endif()

# kivo_room(<target> <source>...): the library of one folder of src/. The folder's CMakeLists.txt lists the
# rooms that it may link to, which are also those that it may include.
function(kivo_room target)
  add_library(${target} STATIC ${ARGN})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PRIVATE kivo_warnings kivo_sanitizers)
endfunction()

# kivo_program(<target> SOURCES <source>... ROOMS <room>...): an executable of those rooms on the Linux
# platform. The platform's interfaces and their implementation need each other's symbols, so they are passed
# to the linker as one group.
function(kivo_program target)
  cmake_parse_arguments(PARSE_ARGV 1 program "" "" "SOURCES;ROOMS")
  list(JOIN program_ROOMS "," rooms)
  add_executable(${target} ${program_SOURCES})
  if(KIVO_SANITIZERS MATCHES "thread")
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/thread_sanitizer.cpp)
  endif()
  if(KIVO_STATIC_LIBRARIES)
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/icu_data.cpp
      ${PROJECT_SOURCE_DIR}/cmake/socket_activation.cpp)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PRIVATE kivo_warnings kivo_sanitizers
    "$<LINK_GROUP:RESCAN,${rooms},kivo_platform,kivo_platform_linux>")
endfunction()
