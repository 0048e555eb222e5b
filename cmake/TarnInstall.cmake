# Where and as what the targets are installed. Nothing is installed without TARN_INSTALL.
#
# The install components are also the Debian packages: platform, pathfinder, development, catalogue,
# catalogue_development and evopath.
include(CMakePackageConfigHelpers)

set(TARN_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tarn_evolution_pathfinder)
set(TARN_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(TARN_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/tarn-evolution)

# A tree that is installed for the system finds its libraries by itself; any other may be moved.
set(TARN_LIBRARY_RPATH "")
set(TARN_PROGRAM_RPATH "")
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  file(RELATIVE_PATH library_dir ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set(TARN_LIBRARY_RPATH "$ORIGIN")
  set(TARN_PROGRAM_RPATH "$ORIGIN/${library_dir}")
endif()

# tarn_install_headers(COMPONENT HEADER...): each under the folder that it is included by. A header is
# named relative to the project or to the folder of generated headers. Those of the project, and those made of one of its
# own, are noted in the global property TARN_PUBLIC_HEADERS, installed or not.
function(tarn_install_headers component)
  foreach(header IN LISTS ARGN)
    if(EXISTS ${PROJECT_SOURCE_DIR}/${header})
      set_property(GLOBAL APPEND PROPERTY TARN_PUBLIC_HEADERS ${PROJECT_SOURCE_DIR}/${header})
    elseif(EXISTS ${PROJECT_SOURCE_DIR}/${header}.in)
      set_property(GLOBAL APPEND PROPERTY TARN_PUBLIC_HEADERS ${PROJECT_BINARY_DIR}/generated/${header})
    endif()
  endforeach()
  if(NOT TARN_INSTALL)
    return()
  endif()
  foreach(header IN LISTS ARGN)
    cmake_path(GET header PARENT_PATH folder)
    set(file ${PROJECT_SOURCE_DIR}/${header})
    if(NOT EXISTS ${file})
      set(file ${PROJECT_BINARY_DIR}/generated/${header})
    endif()
    install(FILES ${file} DESTINATION ${TARN_HEADER_DIR}/${folder} COMPONENT ${component})
  endforeach()
endfunction()

# tarn_install_library(TARGET EXPORT_SET NAME COMPONENT DEVELOPMENT_COMPONENT): the library, which
# importers know as tarn::NAME.
function(tarn_install_library target export_set name component development_component)
  if(NOT TARN_INSTALL)
    return()
  endif()
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} INSTALL_RPATH "${TARN_LIBRARY_RPATH}")
  install(TARGETS ${target} EXPORT ${export_set}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component}
            NAMELINK_COMPONENT ${development_component}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${development_component})
endfunction()

# The targets that find_package brings, for one of its components.
function(tarn_install_targets export_set component)
  if(TARN_INSTALL)
    install(EXPORT ${export_set} NAMESPACE tarn:: DESTINATION ${TARN_PACKAGE_DIR} COMPONENT ${component})
  endif()
endfunction()

function(tarn_install_pkgconfig name component)
  if(NOT TARN_INSTALL)
    return()
  endif()
  file(RELATIVE_PATH TARN_PKGCONFIG_TO_PREFIX /${TARN_PKGCONFIG_DIR} /)
  string(REGEX REPLACE "/$" "" TARN_PKGCONFIG_TO_PREFIX "${TARN_PKGCONFIG_TO_PREFIX}")
  set(TARN_PKGCONFIG_PLATFORM "")
  if(TARN_PLATFORM STREQUAL "in_memory")
    set(TARN_PKGCONFIG_PLATFORM " -ltarn_platform_in_memory")
  endif()
  # What static libraries need besides, from `pkg-config --static`.
  string(REPLACE "-" "_" library ${name})
  string(TOUPPER ${library} library)
  set(TARN_PKGCONFIG_DEFINES "")
  set(TARN_PKGCONFIG_PRIVATE "")
  if(TARN_STATIC)
    set(TARN_PKGCONFIG_DEFINES " -D${library}_STATIC_DEFINE")
    if(name STREQUAL "tarn-evolution-catalogue")
      set(TARN_PKGCONFIG_PRIVATE "Requires.private: sqlite3 >= ${TARN_SQLITE_VERSION}, libutf8proc, yaml-0.1\n")
    elseif(name STREQUAL "tarn-evolution-catalogue-c")
      set(TARN_PKGCONFIG_PRIVATE
        "Requires.private: tarn-evolution-catalogue = ${PROJECT_VERSION}\nLibs.private: -lstdc++ -lm\n")
    elseif(TARN_PLATFORM STREQUAL "in_memory")
      set(TARN_PKGCONFIG_PRIVATE "Libs.private: -lboost_log -lboost_thread -lboost_filesystem -pthread\n")
    endif()
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${TARN_PKGCONFIG_DIR} COMPONENT ${component})
endfunction()

# A program, with its manual page and shell completions where the build makes them: PROGRAM.1,
# PROGRAM.bash, _PROGRAM and PROGRAM.fish in the program's build folder.
function(tarn_install_program target component)
  if(NOT TARN_INSTALL)
    return()
  endif()
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${TARN_PROGRAM_RPATH}")
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
  set(built ${CMAKE_CURRENT_BINARY_DIR})
  install(FILES ${built}/${target}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT ${component} OPTIONAL)
  if(TARN_DEBIAN_PACKAGES)
    set(page "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1/${target}.1")
    install(CODE "if(EXISTS \"${page}\")\n  execute_process(COMMAND gzip -9nf \"${page}\" COMMAND_ERROR_IS_FATAL ANY)\nendif()"
      COMPONENT ${component})
  endif()
  install(FILES ${built}/${target}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME ${target} COMPONENT ${component} OPTIONAL)
  install(FILES ${built}/_${target} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
    COMPONENT ${component} OPTIONAL)
  install(FILES ${built}/${target}.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT ${component} OPTIONAL)
endfunction()

# What find_package(tarn_evolution_pathfinder) reads first.
function(tarn_install_package_config component)
  if(NOT TARN_INSTALL)
    return()
  endif()
  # Whoever links static libraries links what these were built with.
  set(TARN_BOOST_NEEDED "${TARN_BOOST_VERSION}")
  if(TARN_STATIC AND TARN_PLATFORM STREQUAL "in_memory")
    set(TARN_BOOST_NEEDED "${Boost_VERSION_STRING} EXACT COMPONENTS log")
  endif()
  set(config ${PROJECT_BINARY_DIR}/tarn_evolution_pathfinder-config)
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/tarn_evolution_pathfinder-config.cmake.in
    ${config}.cmake INSTALL_DESTINATION ${TARN_PACKAGE_DIR} NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${config}-version.cmake COMPATIBILITY ${TARN_COMPATIBILITY})
  install(FILES ${config}.cmake ${config}-version.cmake ${PROJECT_SOURCE_DIR}/cmake/TarnPlatformKind.cmake
    DESTINATION ${TARN_PACKAGE_DIR} COMPONENT ${component})
endfunction()
