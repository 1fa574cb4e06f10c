# What is installed beside the targets' own files, for find_package and pkg-config, and the packages
# that cpack makes. The components: `runtime`, libuti.so alone, which goes to a terminal; `dev`, to
# build against it; `host`, the desktop stand-in; `tool`, the uti command; `doc`.
include(CMakePackageConfigHelpers)
set(config ${CMAKE_INSTALL_LIBDIR}/cmake/uti)
set(UTI_RESOURCES ${CMAKE_INSTALL_DATADIR}/uti)
configure_package_config_file(cmake/utiConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/utiConfig.cmake
  INSTALL_DESTINATION ${config} PATH_VARS UTI_RESOURCES NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/utiConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/utiConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/utiConfigVersion.cmake
  cmake/UtiAddResources.cmake
  DESTINATION ${config} COMPONENT dev)

# uti::app needs all that it links.
if(CMAKE_CROSSCOMPILING)
  install(TARGETS uti-app EXPORT uti)
else()
  install(TARGETS uti-app EXPORT utiHost)
endif()
install(EXPORT uti FILE utiTargets.cmake NAMESPACE uti:: DESTINATION ${config} COMPONENT dev)
install(EXPORT utiHost FILE utiHostTargets.cmake NAMESPACE uti:: DESTINATION ${config}
  COMPONENT host)
if(TARGET uti-tool)
  install(EXPORT utiTool FILE utiToolTargets.cmake NAMESPACE uti:: DESTINATION ${config}
    COMPONENT tool)
endif()

set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH UTI_PC_PREFIX /${pkgconfig} /)
string(REGEX REPLACE "/$" "" UTI_PC_PREFIX ${UTI_PC_PREFIX})
set(UTI_PC_DESCRIPTION "Application services for small Linux terminals")
set(UTI_PC_LIBRARY uti)
if(CMAKE_CROSSCOMPILING)
  set(UTI_PC_LIBRARY uti-import)
endif()
foreach(name IN ITEMS uti uti-host)
  configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/uti.pc DESTINATION ${pkgconfig} COMPONENT dev)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/uti-host.pc DESTINATION ${pkgconfig} COMPONENT host)

if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

# One tar archive of everything, and a Debian package for each component.
set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME uti)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION}) # all four numbers
set(CPACK_PACKAGE_VENDOR uti)
set(CPACK_PACKAGE_CONTACT "The uti developers <uti@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${UTI_PC_DESCRIPTION})
set(CPACK_PACKAGE_FILE_NAME uti-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev host doc)
if(TARGET uti-tool)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Debian's name of the machine, which its package tools know of the PC alone.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
elseif(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
  if(UTI_CROSS MATCHES "gnueabihf$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  elseif(UTI_CROSS MATCHES "gnueabi$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armel)
  elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
  endif()
endif()
# So does what computes the dependencies.
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(DPKG_SHLIBDEPS)
if(DPKG_SHLIBDEPS AND NOT DEFINED CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/Src) # a program may need both libraries
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS libc6)
endif()

# Package, section, what else it needs, and the line that tells what it is.
function(describe_package component name section needs summary)
  string(TOUPPER ${component} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS "${needs}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${component}_DESCRIPTION "${summary}" PARENT_SCOPE)
endfunction()
set(same "= ${PROJECT_VERSION}")
set(runtime libuti${PROJECT_VERSION_MAJOR})
describe_package(runtime ${runtime} libs "" "Application services for small Linux terminals")
describe_package(dev libuti-dev libdevel "${runtime} (${same})" "Headers and build files of uti")
describe_package(host libuti-host libdevel "libuti-dev (${same})"
  "Desktop stand-in of the terminal that uti runs on")
describe_package(tool uti-tool devel "" "The uti command: makes and reads the files of uti")
describe_package(doc uti-doc doc "" "Documentation and examples of uti")
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
include(CPack)
