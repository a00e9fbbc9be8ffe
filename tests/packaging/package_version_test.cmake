# The version of the source is in CMakeLists.txt alone; the packages' version must follow it.
# Usage: cmake -D ROOT=<the source> -D VERSION=<the project's> -P package_version_test.cmake
cmake_minimum_required(VERSION 3.25)

file(STRINGS "${ROOT}/debian/changelog" first LIMIT_COUNT 1)
if(NOT first MATCHES "^quarrynet \\(([^)]*)\\) ")
  message(FATAL_ERROR "debian/changelog begins with an unknown line: ${first}")
endif()
if(NOT CMAKE_MATCH_1 STREQUAL VERSION)
  message(SEND_ERROR "debian/changelog has version ${CMAKE_MATCH_1}, CMakeLists.txt ${VERSION}")
endif()

# The newest release of the change log is this version or, while the next one is in work, an older one.
file(STRINGS "${ROOT}/CHANGELOG.md" releases REGEX "^## [0-9]")
foreach(release IN LISTS releases)
  if(NOT release MATCHES "^## ([0-9]+\\.[0-9]+\\.[0-9]+) - [0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]$")
    message(SEND_ERROR "CHANGELOG.md: \"${release}\" is not \"## VERSION - YEAR-MONTH-DAY\"")
  elseif(CMAKE_MATCH_1 VERSION_GREATER VERSION)
    message(SEND_ERROR "CHANGELOG.md has ${CMAKE_MATCH_1}, CMakeLists.txt ${VERSION}")
  endif()
endforeach()

file(STRINGS "${ROOT}/packaging/linux/desktop/org.quarrynet.Quarrynet.metainfo.xml" described REGEX "<release ")
list(GET described 0 newest)
if(NOT newest MATCHES "version=\"${VERSION}\"")
  message(SEND_ERROR "The metainfo's newest release is not ${VERSION}: ${newest}")
endif()
