# uti_add_resources(TARGET SOURCE... HEADER FILE [CHECK])
#
# Compiles resource sources for TARGET when the project is built. Each SOURCE, such as first.toml,
# is named after its module (`module = "first"` in it) and makes first.res in the caller's binary
# folder, CMAKE_CURRENT_BINARY_DIR. FILE, a name such as first.h, becomes the C header of all string
# ids in the same folder, which TARGET can include; with a name such as first.hpp they are the typed
# constants of uti.hpp. Both are made anew when a source or the uti command changes; files whose
# content stays the same keep their time, so nothing is compiled for them. With CHECK the sources
# are checked as well, as uti check does; mistakes that would mislead a person stop the build.
#
# The uti command is the one that UTI_TOOL names; else that of the package or of the build; else, as
# in a cross build, the one that CMake finds on this PC.
function(uti_add_resources target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "CHECK" "HEADER" "")
  if(NOT arg_HEADER OR NOT arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "usage: uti_add_resources(TARGET SOURCE... HEADER FILE [CHECK])")
  endif()
  uti_find_tool()
  set(tool uti::uti-tool)
  if(UTI_TOOL)
    set(tool ${UTI_TOOL})
  elseif(NOT TARGET uti::uti-tool)
    message(FATAL_ERROR "uti_add_resources: there is no uti command here that could compile the "
      "resources of ${target}. Install uti on this PC and put its bin folder into PATH, or say "
      "where the command is: -DUTI_TOOL=/path/to/bin/uti")
  endif()

  set(sources "")
  set(made ${CMAKE_CURRENT_BINARY_DIR}/${arg_HEADER})
  foreach(source IN LISTS arg_UNPARSED_ARGUMENTS)
    cmake_path(ABSOLUTE_PATH source NORMALIZE)
    cmake_path(GET source STEM LAST_ONLY module)
    if(NOT EXISTS ${source})
      message(FATAL_ERROR "uti_add_resources: there is no ${source}")
    endif()
    file(STRINGS ${source} named REGEX "^module *= *\"${module}\"")
    if(NOT named)
      message(FATAL_ERROR "uti_add_resources: ${source} must begin with: module = \"${module}\"")
    endif()
    list(APPEND sources ${source})
    list(APPEND made ${CMAKE_CURRENT_BINARY_DIR}/${module}.res)
  endforeach()

  set(check "")
  if(arg_CHECK)
    set(check --check)
  endif()

  # A stamp stands for the run: the files themselves stay older than their source when it changes
  # without effect.
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${arg_HEADER}.stamp)
  add_custom_command(
    OUTPUT ${stamp}
    BYPRODUCTS ${made}
    COMMAND ${tool} compile ${sources} -o ${CMAKE_CURRENT_BINARY_DIR}
      --header ${CMAKE_CURRENT_BINARY_DIR}/${arg_HEADER} ${check}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${sources} ${tool}
    COMMENT "Making ${arg_HEADER} and the resources of ${target}"
    VERBATIM)
  cmake_path(GET arg_HEADER STEM name)
  add_custom_target(${target}-${name}-resources DEPENDS ${stamp})
  add_dependencies(${target} ${target}-${name}-resources)
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
endfunction()

# Looks for a uti command of this PC where neither UTI_TOOL nor the target uti::uti-tool names one,
# and makes the target of it; does nothing when there is none.
function(uti_find_tool)
  if(NOT UTI_TOOL AND TARGET uti::uti-tool)
    return()
  endif()
  find_program(UTI_TOOL uti DOC "The uti command of this PC")
  if(NOT UTI_TOOL)
    return()
  endif()
  execute_process(COMMAND ${UTI_TOOL} --version
    OUTPUT_VARIABLE version ERROR_QUIET RESULT_VARIABLE result)
  if(NOT result EQUAL 0 OR NOT version MATCHES "^[0-9]+(\\.[0-9]+)+\n$")
    message(FATAL_ERROR "UTI_TOOL is ${UTI_TOOL}, which is not a uti command that runs on this PC; "
      "say where it is: -DUTI_TOOL=/path/to/bin/uti")
  endif()
  if(NOT TARGET uti::uti-tool)
    add_executable(uti::uti-tool IMPORTED GLOBAL)
    set_target_properties(uti::uti-tool PROPERTIES IMPORTED_LOCATION ${UTI_TOOL})
  endif()
endfunction()
