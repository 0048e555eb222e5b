# Settings that every target of this project shares.
function(tarn_target_defaults target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-restrict)  # g++ 12 sees overlaps in std::string's operator+
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND TARN_SANITIZE)
    target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)  # sanitizers hide from g++ what is initialized
  endif()
  if(TARN_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(TARN_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TARN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${TARN_SANITIZE})
  endif()
  if(TARN_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link
      -fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/coverage_ignorelist.txt)
  endif()
endfunction()

# What libraries are built as.
set(TARN_LIBRARY_KIND SHARED)
if(TARN_STATIC)
  set(TARN_LIBRARY_KIND STATIC)
endif()

# tarn_library(TARGET [NAME]): a library, or the objects of one, whose version and SONAME are the project's. Headers that
# say what the library NAME exports are told when it is a static one.
function(tarn_library target)
  tarn_target_defaults(${target})
  if(TARN_STATIC AND ARGC GREATER 1)
    string(TOUPPER ${ARGV1} name)
    target_compile_definitions(${target} PUBLIC ${name}_STATIC_DEFINE)
  endif()
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON  # static ones too may become part of a shared object
    VERSION ${PROJECT_VERSION}
    SOVERSION ${TARN_SOVERSION})
  # Nobody replaces a function of ours at load time, so that our own calls need no detour.
  target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
  if(TARN_SANITIZE)
    # Takes little longer to compile than without, and tests run three times as fast.
    target_compile_options(${target} PRIVATE $<$<CONFIG:Debug>:-O1>)
  endif()
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tarn-evolution>)
endfunction()

# The header with the macro for what the library exports. It brings what all headers need.
function(tarn_export_header target)
  set(requirements "#include \"platform/requirements.hpp\"")
  generate_export_header(${target} EXPORT_FILE_NAME ${PROJECT_BINARY_DIR}/generated/${target}_export.hpp
    CUSTOM_CONTENT_FROM_VARIABLE requirements)
endfunction()

# Hides the instantiations of other people's templates, which visibility lets through.
function(tarn_export_only_own_symbols target)
  if(TARN_STATIC)
    return()
  endif()
  set(map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
endfunction()

# Makes the objects of an archive part of a library, invisible from outside: whoever uses the library need not have it.
function(tarn_take_in_archive target archive)
  if(NOT TARN_STATIC)
    target_link_libraries(${target} PRIVATE "$<BUILD_INTERFACE:${archive}>")
    return()
  endif()
  get_filename_component(name "${archive}" NAME_WE)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name})
  file(MAKE_DIRECTORY ${folder})
  execute_process(COMMAND ${CMAKE_AR} x ${archive} WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB objects ${folder}/*.o)
  set_source_files_properties(${objects} PROPERTIES EXTERNAL_OBJECT ON)
  target_sources(${target} PRIVATE ${objects})
endfunction()

# With TARN_UNITY, compiles the sources of each of these folders of the target's as one; "." is the target's own.
function(tarn_unite_folders target)
  if(NOT TARN_UNITY)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  foreach(folder IN LISTS ARGN)
    string(REGEX REPLACE "^[.]/" "" prefix "${folder}/")
    set(members ${sources})
    list(FILTER members INCLUDE REGEX "^${prefix}[a-z0-9_]+[.]cpp$")
    string(MAKE_C_IDENTIFIER "sources_${folder}" group)
    set_source_files_properties(${members} PROPERTIES UNITY_GROUP ${group})
  endforeach()
endfunction()

# With TARN_UNITY, compiles the target's sources in a few pieces, except those that are named: what they have to
# themselves is named as in others.
function(tarn_unite_sources target pieces)
  if(NOT TARN_UNITY)
    return()
  endif()
  get_target_property(sources ${target} SOURCES)
  list(LENGTH sources count)
  math(EXPR batch "(${count} + ${pieces} - 1) / ${pieces}")
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${batch})
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
