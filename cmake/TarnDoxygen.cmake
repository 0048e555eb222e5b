# cmake --build BUILD --target doxygen: the reference of all public headers, in BUILD/doxygen/html. A warning fails it,
# and the test of the same. There are neither where Doxygen is not installed (scripts/setup_doxygen.sh).
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(DOXYGEN_PROJECT_NAME "Evolution path finder")
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/doxygen)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_EXTRACT_ALL YES)  # what speaks for itself has no comment
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_BUILTIN_STL_SUPPORT YES)  # for specialisations of std::hash
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED
  TARN_EVOLUTION_PATHFINDER_EXPORT= TARN_EVOLUTION_CATALOGUE_EXPORT= TARN_PLATFORM_API=)
get_property(headers GLOBAL PROPERTY TARN_PUBLIC_HEADERS)
doxygen_add_docs(doxygen ${headers})
if(TARN_BUILD_TESTS)
  add_test(NAME Doxygen.HasNoWarnings COMMAND Doxygen::doxygen ${CMAKE_CURRENT_BINARY_DIR}/Doxyfile.doxygen
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
endif()
