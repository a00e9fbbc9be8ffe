# Copies the libraries that a program for Windows imports into its folder. CMake's own GET_RUNTIME_DEPENDENCIES compares
# names in lower case, so it does not find Qt6Core.dll in a file system that distinguishes cases.

# copy_libraries(TO FOLDER OBJDUMP PROGRAM STRIP PROGRAM FOLDERS FOLDER... FILES FILE...): reads what FILES import, and
# copies each library that one of FOLDERS has, and what it imports in turn, without debug information, which is twelve
# times the size of the code of the compiler's runtime. The first of FOLDERS that has a library counts. A library that
# none has belongs to the system, unless its name says that it is a compiler's or Qt's: then the call fails.
function(copy_libraries)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TO;OBJDUMP;STRIP" "FOLDERS;FILES")
  set(seen)
  while(arg_FILES)
    list(POP_FRONT arg_FILES file)
    execute_process(COMMAND "${arg_OBJDUMP}" -p "${file}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "DLL Name: [^\n\r]+" imports "${headers}")
    foreach(import IN LISTS imports)
      string(REPLACE "DLL Name: " "" name "${import}")
      list(FIND seen "${name}" place) # IN_LIST needs a policy, which installation scripts do not set
      if(NOT place EQUAL -1)
        continue()
      endif()
      list(APPEND seen "${name}")
      unset(found CACHE)
      find_file(found NAMES "${name}" PATHS ${arg_FOLDERS} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
      if(found)
        file(INSTALL DESTINATION "${arg_TO}" TYPE SHARED_LIBRARY FILES "${found}")
        execute_process(COMMAND "${arg_STRIP}" --strip-unneeded "$ENV{DESTDIR}${arg_TO}/${name}" COMMAND_ERROR_IS_FATAL ANY)
        list(APPEND arg_FILES "${found}")
      elseif(name MATCHES "^(lib|Qt)")
        message(FATAL_ERROR "${file} needs ${name}, which is in none of these folders: ${arg_FOLDERS}")
      endif()
    endforeach()
  endwhile()
endfunction()
