# Tests that the manual lies beside the program in builds with several configurations, where each has a folder of its
# own. Usage: cmake -D SOURCE=<the tree> -D BUILD=<an empty folder> -D COMPILER=<of C++> -P manual_place_test.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${BUILD}")
execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET
  COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "Ninja Multi-Config" "-DCMAKE_CXX_COMPILER=${COMPILER}"
    -DQUARRYNET_BUILD_SERVICES=OFF -DQUARRYNET_BUILD_TESTS=OFF)
foreach(configuration IN ITEMS Debug Release)
  execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET
    COMMAND "${CMAKE_COMMAND}" --build "${BUILD}" --config ${configuration} --target quarrynet_manual)
  if(NOT EXISTS "${BUILD}/bin/${configuration}/manual/index.html")
    message(SEND_ERROR "bin/${configuration} has no manual")
  endif()
endforeach()
file(REMOVE_RECURSE "${BUILD}")
