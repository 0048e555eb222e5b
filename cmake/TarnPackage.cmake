# Debian packages, one for each install component; scripts/package.sh makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "Evolution path finder")
set(CPACK_PACKAGE_CONTACT "The maintainers of the evolution path finder <maintainers@tarn.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
# Other people's libraries are found by what was linked; our own are not installed yet and stand below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/platform ${PROJECT_BINARY_DIR}/pathfinder ${PROJECT_BINARY_DIR}/catalogue)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

find_program(GZIP_PROGRAM gzip REQUIRED)
string(TIMESTAMP PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)  # now, or as SOURCE_DATE_EPOCH tells
set(CPACK_COMPONENTS_ALL "")

# tarn_package(COMPONENT NAME SECTION SUMMARY TEXT DEPENDS): DEPENDS is a list of packages.
macro(tarn_package component name section summary text depends)
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}")
  string(JOIN ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS ${depends})
  # What Debian wants to be said in every package.
  set(documents ${PROJECT_BINARY_DIR}/packaging/${name})
  set(PACKAGE ${name})
  configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in ${documents}/changelog.Debian @ONLY)
  execute_process(COMMAND ${GZIP_PROGRAM} -9nf ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${documents}/changelog.Debian.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
    COMPONENT ${component})
  file(READ ${PROJECT_SOURCE_DIR}/packaging/every-package.lintian-overrides overrides)
  if(${section} STREQUAL "libs")
    set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
    file(READ ${PROJECT_SOURCE_DIR}/packaging/library.lintian-overrides library_overrides)
    string(APPEND overrides "${library_overrides}")
  endif()
  file(WRITE ${documents}/lintian-overrides "${overrides}")
  install(FILES ${documents}/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    RENAME ${name} COMPONENT ${component})
endmacro()

set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(platform "libtarn-platform-in-memory${TARN_SOVERSION}")
set(pathfinder "libtarn-evolution-pathfinder${TARN_SOVERSION}")
set(catalogue "libtarn-evolution-catalogue${TARN_SOVERSION}")
# The headers need Boost.Exception only, of either version in Debian 12. These exclude one another, and a host may need
# the first, which is the default, for itself.
set(boost_headers "libboost1.74-dev | libboost1.81-dev")
set(sqlite "libsqlite3-0 (>= ${TARN_SQLITE_VERSION})")

tarn_package(platform ${platform} libs
  "development platform of the evolution path finder"
  "The host framework's interfaces (meta types, messages, logging, events) kept in\nmemory, for development and for evopath."
  "")
tarn_package(pathfinder ${pathfinder} libs
  "evolution path finder (shared library)"
  "Finds the least-weight sequence of version steps between two consistent\nselections of metamodel versions."
  "${platform} ${same_version}")
tarn_package(development libtarn-evolution-pathfinder-dev libdevel
  "evolution path finder (development files)"
  "Headers, the CMake package tarn_evolution_pathfinder and the pkg-config file\ntarn-evolution-pathfinder."
  "${platform} ${same_version};${pathfinder} ${same_version};${boost_headers}")
if(TARN_BUILD_TOOLS)
  tarn_package(catalogue ${catalogue} libs
    "catalogues for the evolution path finder (shared library)"
    "Reads, checks, stores, explains and draws catalogues of metamodels and of the\nhops between their versions."
    "${platform} ${same_version};${pathfinder} ${same_version};${sqlite}")
  tarn_package(catalogue_development libtarn-evolution-catalogue-dev libdevel
    "catalogues for the evolution path finder (development files)"
    "Headers, and the component catalogue of the CMake package\ntarn_evolution_pathfinder."
    "${catalogue} ${same_version};libtarn-evolution-pathfinder-dev ${same_version}")
  tarn_package(evopath evopath utils
    "asks catalogues for paths between metamodel versions"
    "The command-line tool of the evolution path finder: finds, explains and draws\npaths, and checks, browses and stores catalogues."
    "${platform} ${same_version};${pathfinder} ${same_version};${catalogue} ${same_version}")
  set(CPACK_DEBIAN_EVOPATH_PACKAGE_RECOMMENDS graphviz)
endif()

include(CPack)
