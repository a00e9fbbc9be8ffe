# Installs a finished build into an empty folder and tests the list of files, that no file names the source or the
# build, and that the installed programs run. Tests the list of files under another prefix,
# too. Usage: see CMakeLists.txt
cmake_minimum_required(VERSION 3.25)

# install_tree(OPTION...): installs the build with more options into an empty ${TREE}.
function(install_tree)
  file(REMOVE_RECURSE "${TREE}")
  set(ENV{DESTDIR} "${TREE}")
  execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" ${ARGN})
endfunction()

# compare_files(FILE...): ${TREE} has these files and no others.
function(compare_files)
  set(missing ${ARGN})
  file(GLOB_RECURSE found LIST_DIRECTORIES false "${TREE}/*")
  string(LENGTH "${TREE}" length)
  foreach(file IN LISTS found)
    string(SUBSTRING "${file}" ${length} -1 file)
    if(file IN_LIST ARGN)
      list(REMOVE_ITEM missing "${file}")
    else()
      message(SEND_ERROR "This file is not in the list: ${file}")
    endif()
  endforeach()
  if(missing)
    list(JOIN missing "\n  " text)
    message(SEND_ERROR "These files are missing:\n  ${text}")
  endif()
endfunction()

# ---- the list of files ----

cmake_path(ABSOLUTE_PATH SYSCONFDIR BASE_DIRECTORY "${PREFIX}")
cmake_path(ABSOLUTE_PATH ZSH BASE_DIRECTORY "${PREFIX}")
set(id org.quarrynet.Quarrynet)
set(expected
  "${BINDIR}/quarrynet"
  "${BINDIR}/quarrynet-services"
  "${LIBDIR}/quarrynet/libquarrynet_webengine.so"
  "${LIBEXECDIR}/quarrynet/quarrynet-thumbnails"
  "${SYSCONFDIR}/apt/apt.conf.d/60quarrynet-services"
  "${DATADIR}/applications/${id}.desktop"
  "${DATADIR}/metainfo/${id}.metainfo.xml"
  "${DATADIR}/icons/hicolor/scalable/apps/${id}.svg"
  "${MANDIR}/man1/quarrynet-thumbnails.1")
foreach(size IN ITEMS 16 22 24 32 48 64 128 256)
  list(APPEND expected "${DATADIR}/icons/hicolor/${size}x${size}/apps/${id}.png")
endforeach()
foreach(program IN ITEMS quarrynet quarrynet-services)
  list(APPEND expected "${DATADIR}/bash-completion/completions/${program}" "${ZSH}/_${program}"
    "${DATADIR}/fish/vendor_completions.d/${program}.fish" "${MANDIR}/man1/${program}.1")
endforeach()
foreach(manager IN ITEMS system user)
  foreach(unit IN ITEMS .service .socket -index.service -index.timer -first-index.service
      -crawl.service -crawl.timer)
    list(APPEND expected "${PREFIX}/lib/systemd/${manager}/quarrynet-services${unit}")
  endforeach()
endforeach()
foreach(service IN ITEMS web image download file)
  list(APPEND expected "${PREFIX}/lib/systemd/system/quarrynet-services-${service}.socket")
endforeach()
file(GLOB_RECURSE manual RELATIVE "${ROOT}/docs/manual" "${ROOT}/docs/manual/*")
file(GLOB languages RELATIVE "${ROOT}/translations" "${ROOT}/translations/manual_*.ts")
foreach(file IN LISTS manual)
  list(APPEND expected "${DATADIR}/quarrynet/manual/${file}")
  if(file MATCHES "\\.html$")
    foreach(language IN LISTS languages)
      string(REGEX REPLACE "^manual_(.*)\\.ts$" "\\1" language "${language}")
      list(APPEND expected "${DATADIR}/quarrynet/manual/${language}/${file}")
    endforeach()
  endif()
endforeach()

# Another prefix takes everything with it, but for absolute folders that were configured.
set(moved ${expected})
list(TRANSFORM moved REPLACE "^${PREFIX}/" "/elsewhere/")
install_tree(--prefix /elsewhere)
compare_files(${moved})

install_tree(--strip)
compare_files(${expected})

# ---- their contents ----

file(GLOB_RECURSE found LIST_DIRECTORIES false "${TREE}/*")
foreach(file IN LISTS found)
  file(READ "${file}" bytes HEX)
  foreach(folder IN ITEMS "${ROOT}" "${BUILD}" "${TREE}")
    string(HEX "${folder}" path)
    string(FIND "${bytes}" "${path}" place)
    if(NOT place EQUAL -1)
      message(SEND_ERROR "${file} contains the path ${folder}")
      break()
    endif()
  endforeach()
endforeach()

# Later formats of compiled-in files contain their times, so that no two builds have the same bytes.
file(GLOB_RECURSE resources "${BUILD}/qrc_*.cpp")
if(NOT resources)
  message(SEND_ERROR "The build has no compiled-in files")
endif()
foreach(file IN LISTS resources)
  file(READ "${file}" text)
  if(NOT text MATCHES "int version = 1;")
    message(SEND_ERROR "${file} contains the times of its files")
  endif()
endforeach()

# ---- the programs ----

foreach(program IN ITEMS quarrynet quarrynet-services)
  execute_process(COMMAND "${TREE}${BINDIR}/${program}" --version OUTPUT_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0 OR NOT output STREQUAL "${program} ${VERSION}\n")
    message(SEND_ERROR "${program} --version printed \"${output}\" and returned ${result}")
  endif()
endforeach()

file(REMOVE_RECURSE "${TREE}")
