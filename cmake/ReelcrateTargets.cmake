# How every target of the project is compiled, and the one way to make a folder of src/ a library.

add_library(reelcrate_options INTERFACE)
target_compile_options(reelcrate_options INTERFACE -Wall -Wextra)
target_compile_definitions(
  reelcrate_options
  INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
            QT_NO_KEYWORDS)
if(REELCRATE_SANITIZERS)
  set(_sanitize -fsanitize=${REELCRATE_SANITIZERS} -fno-omit-frame-pointer)
  # Among its additions the compiler loses sight of what has a value.
  target_compile_options(reelcrate_options INTERFACE ${_sanitize}
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(reelcrate_options INTERFACE ${_sanitize})
endif()

# What executables are linked with, besides.
add_library(reelcrate_program INTERFACE)
target_link_libraries(reelcrate_program INTERFACE reelcrate_options)
if(REELCRATE_SANITIZERS STREQUAL "thread")
  target_sources(reelcrate_program INTERFACE ${CMAKE_CURRENT_LIST_DIR}/tsan_clone.cpp)
endif()

# reelcrate_precompile(NAME FIRST [HEADER...])
#
# Lets target NAME see these headers ready-made, as compiled for target FIRST. A build that does so
# does not notice what a file forgets to include, which is why only some presets ask for it.
function(reelcrate_precompile name first)
  if(NOT REELCRATE_PRECOMPILE)
    return()
  endif()
  if(name STREQUAL first)
    target_precompile_headers(${name} PRIVATE ${ARGN})
  else()
    target_precompile_headers(${name} REUSE_FROM ${first})
  endif()
endfunction()

# reelcrate_library(NAME [USES FOLDER...])
#
# Makes src/NAME a library. Its headers are included as "NAME/header.h", and only by NAME itself
# and by the folders that USE it: each folder has an include root of its own that holds nothing but
# a link to the folder, so that an include against the direction of the arrows does not compile.
function(reelcrate_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "USES")
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp
       ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h)
  set(root ${PROJECT_BINARY_DIR}/include-roots/${name})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${name} ${root}/${name} SYMBOLIC)

  add_library(reelcrate_${name} STATIC ${sources})
  add_library(reelcrate::${name} ALIAS reelcrate_${name})
  target_include_directories(reelcrate_${name} PUBLIC ${root})
  target_link_libraries(reelcrate_${name} PUBLIC Qt6::Core PRIVATE reelcrate_options)
  reelcrate_precompile(reelcrate_${name} reelcrate_base <algorithm> <chrono> <functional> <memory>
    <optional> <QDir> <QHash> <QJsonObject> <QObject> <QProcess> <QRegularExpression> <QTimer>)
  foreach(used IN LISTS arg_USES)
    target_link_libraries(reelcrate_${name} PUBLIC reelcrate::${used})
  endforeach()
endfunction()

# reelcrate_qml_library(NAME URI [USES FOLDER...])
#
# The same with the QML types that the folder holds, as the module URI; folders inside it are not
# part of their names. Whoever makes an engine calls the module's qml_register_types_URI() first: a
# static library's linker drops what nobody names.
function(reelcrate_qml_library name uri)
  reelcrate_library(${name} ${ARGN})
  file(GLOB_RECURSE qml CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}
       ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.qml)
  foreach(file IN LISTS qml)
    get_filename_component(alias ${file} NAME)
    set_source_files_properties(${file} PROPERTIES QT_RESOURCE_ALIAS ${alias})
  endforeach()
  set(cache)
  if(NOT REELCRATE_QML_COMPILATION)
    set(cache NO_CACHEGEN)
  endif()
  qt_add_qml_module(reelcrate_${name} URI ${uri} VERSION 1.0 NO_PLUGIN ${cache} DEPENDENCIES QtQuick
                    RESOURCE_PREFIX /qt/qml
                    QML_FILES ${qml} IMPORT_PATH ${QT_QML_OUTPUT_DIRECTORY})
  # Qt adds the folder above, through which every header could be included.
  get_target_property(roots reelcrate_${name} INCLUDE_DIRECTORIES)
  list(REMOVE_ITEM roots ${CMAKE_CURRENT_SOURCE_DIR})
  set_target_properties(reelcrate_${name} PROPERTIES INCLUDE_DIRECTORIES "${roots}")
  # The generated registration names headers without their folder.
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h)
  list(TRANSFORM headers REPLACE "/[^/]+$" "" OUTPUT_VARIABLE folders)
  list(REMOVE_DUPLICATES folders)
  target_include_directories(reelcrate_${name} PRIVATE ${folders})
endfunction()
