# The units load without a complaint, the system's are confined, their sockets are the services' addresses, and the
# package tool's hook never fails.
#
#   cmake -D SOURCE=... -D BUILT=... -D STAGE=... -D ANALYZE=... -D APT_CONFIG=... -P units_test.cmake
cmake_minimum_required(VERSION 3.25)

# The hook must end with success whether or not the program, systemd or the index are there.
set(hook "${BUILT}/apt/60quarrynet-services")
file(READ "${hook}" text)
if(NOT text MATCHES "Post-Invoke-Success { \"([^\"]*)\"; };")
  message(FATAL_ERROR "${hook} has no command")
endif()
set(command "${CMAKE_MATCH_1}")
foreach(program IN ITEMS /nonexistent/quarrynet-services /bin/sh)
  string(REGEX REPLACE "test -x [^ ]+" "test -x ${program}" tried "${command}")
  string(REPLACE "systemctl" "/nonexistent/systemctl" tried "${tried}")
  execute_process(COMMAND sh -c "${tried}" RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT status EQUAL 0 OR said)
    message(SEND_ERROR "the hook of the package tool ends with ${status} and says \"${said}\"")
  endif()
endforeach()
if(APT_CONFIG)
  execute_process(COMMAND "${APT_CONFIG}" -c "${hook}" dump OUTPUT_VARIABLE dump ERROR_VARIABLE said RESULT_VARIABLE status)
  string(FIND "${dump}" "Post-Invoke-Success:: \"${command}\"" at)
  if(said OR NOT status EQUAL 0 OR at LESS 0)
    message(SEND_ERROR "the package tool does not read its hook: ${said}")
  endif()
endif()

# The addresses of the window's requests.
set(last 0)
foreach(service IN ITEMS web image download file)
  math(EXPR last "${last} + 1")
  file(READ "${SOURCE}/packaging/linux/systemd/system/quarrynet-services-${service}.socket" text)
  if(NOT text MATCHES "\nListenStream=127\\.80\\.0\\.${last}:80\nFileDescriptorName=${service}\n")
    message(SEND_ERROR "the socket of the ${service} search is another one")
  endif()
endforeach()

if(NOT ANALYZE)
  message(STATUS "units_test: skipped, there is no systemd-analyze")
  return()
endif()

file(REMOVE_RECURSE "${STAGE}")
foreach(manager IN ITEMS system user)
  file(GLOB units "${BUILT}/${manager}/*.service" "${SOURCE}/packaging/linux/systemd/${manager}/*.socket"
    "${SOURCE}/packaging/linux/systemd/${manager}/*.timer")
  set(staged)
  foreach(unit IN LISTS units)
    get_filename_component(name "${unit}" NAME)
    file(READ "${unit}" text)
    # The program is not installed where the unit will start it.
    string(REGEX REPLACE "ExecStart=[^ ]+" "ExecStart=/bin/true" text "${text}")
    file(WRITE "${STAGE}/${manager}/${name}" "${text}")
    list(APPEND staged "${STAGE}/${manager}/${name}")
  endforeach()
  list(LENGTH staged count)
  if(count LESS 5)
    message(FATAL_ERROR "there are only ${count} units for the ${manager}")
  endif()
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env "XDG_RUNTIME_DIR=${STAGE}" "${ANALYZE}" --${manager} verify
    --man=no ${staged} RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT status EQUAL 0 OR said)
    message(SEND_ERROR "the units for the ${manager}: ${said}")
  endif()
endforeach()

file(GLOB services "${STAGE}/system/*.service")
foreach(service IN LISTS services)
  execute_process(COMMAND "${ANALYZE}" security --offline=true --threshold=20 --no-pager "${service}"
    RESULT_VARIABLE status OUTPUT_VARIABLE table ERROR_VARIABLE table)
  string(REGEX MATCH "Overall exposure level[^\n]*" level "${table}")
  message(STATUS "${level}")
  if(NOT status EQUAL 0 OR NOT level)
    message(SEND_ERROR "${service} may do too much: ${table}")
  endif()
endforeach()
