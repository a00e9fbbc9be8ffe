# A purge removes what the services have left on a system in another folder (DPKG_ROOT), follows no link out of it,
# leaves what is not theirs, and succeeds again, or where something cannot be removed. Nothing else removes anything.
#
#   cmake -D SCRIPT=... -D STAGE=... -P purge_test.cmake
cmake_minimum_required(VERSION 3.25)

set(root "${STAGE}/root")
set(state "${root}/var/lib/private/quarrynet")
set(foreign "${STAGE}/foreign/kept" "${root}/var/lib/private/other/kept" "${root}/var/lib/quarrynet-other"
  "${root}/etc/quarrynet.other" "${root}/var/lib/systemd/timers/stamp-other.timer")
set(own "${state}/index.sqlite" "${root}/etc/quarrynet/services.toml"
  "${root}/var/lib/systemd/timers/stamp-quarrynet-services-index.timer")

# run(WORD...): runs the script with these words. Fails unless it succeeds.
function(run)
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env "DPKG_ROOT=${root}" sh "${SCRIPT}" ${ARGN}
    RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT status EQUAL 0)
    message(SEND_ERROR "postrm ${ARGN} ended with ${status}: ${said}")
  endif()
endfunction()

file(REMOVE_RECURSE "${STAGE}")
foreach(file IN LISTS foreign own)
  file(WRITE "${file}" "text")
endforeach()
file(CREATE_LINK private/quarrynet "${root}/var/lib/quarrynet" SYMBOLIC)
file(CREATE_LINK "${STAGE}/foreign" "${state}/link" SYMBOLIC)

foreach(words IN ITEMS "remove" "upgrade;2.0" "failed-upgrade;2.0" "abort-install" "abort-install;1.0"
    "abort-upgrade;1.0" "disappear;other;1.0")
  run(${words})
  foreach(file IN LISTS foreign own)
    if(NOT EXISTS "${file}")
      message(FATAL_ERROR "postrm ${words} removed ${file}")
    endif()
  endforeach()
endforeach()

run(purge)
run(purge)
foreach(file IN LISTS foreign)
  if(NOT EXISTS "${file}")
    message(SEND_ERROR "the purge removed ${file}")
  endif()
endforeach()
foreach(file IN LISTS own ITEMS "${state}" "${root}/var/lib/quarrynet" "${root}/etc/quarrynet")
  if(EXISTS "${file}" OR IS_SYMLINK "${file}")
    message(SEND_ERROR "the purge left ${file}")
  endif()
endforeach()

# The index on another disk, to which the administrator has led the folder by a link, is the administrator's.
file(CREATE_LINK "${STAGE}/foreign" "${state}" SYMBOLIC)
run(purge)
if(NOT EXISTS "${STAGE}/foreign/kept" OR IS_SYMLINK "${state}")
  message(SEND_ERROR "the purge followed a link, or left it")
endif()

# A folder that cannot be changed; root changes it all the same.
file(WRITE "${root}/etc/quarrynet/services.toml" "text")
file(CHMOD "${root}/etc/quarrynet" PERMISSIONS OWNER_READ OWNER_EXECUTE)
run(purge)
if(EXISTS "${root}/etc/quarrynet")
  file(CHMOD "${root}/etc/quarrynet" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endif()
file(REMOVE_RECURSE "${STAGE}")
