# A screen or a set of components: a static library with its QML module, named Cairnfield.<Name>, and the plugin that the
# program and the tests link to it.

set(CAIRNFIELD_QML_DIRECTORY "${PROJECT_BINARY_DIR}/qml")
# Compiling QML ahead of time takes longer than all else in a debug build.
set(CAIRNFIELD_QML_NO_CACHE "")
if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
  set(CAIRNFIELD_QML_NO_CACHE NO_CACHEGEN)
endif()

# For a target with Q_OBJECT in it. Qt 6.4's moc cannot read what the standard library declares for compilers with concepts,
# so it is not told which compiler this is.
function(cairnfield_moc target)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOMOC_COMPILER_PREDEFINES OFF)
endfunction()

# cairnfield_qml_module(Name [QML a.qml ...] [SINGLETONS b.qml ...] [SOURCES c.cpp c.h ...] [RESOURCES icons/d.svg ...]
#                       LINKS Module ... [LIBRARIES Qt6::X ...] [TYPES_FROM Module ...])
# TYPES_FROM names the QML modules whose types the properties of this one's C++ types have.
# Gives Cairnfield::Name, and Cairnfield::NamePlugin for whoever imports the module in a program: its source also says
# Q_IMPORT_QML_PLUGIN(Cairnfield_NamePlugin).
function(cairnfield_qml_module name)
  cmake_parse_arguments(ARG "" "" "QML;SINGLETONS;SOURCES;RESOURCES;LINKS;LIBRARIES;TYPES_FROM" ${ARGN})
  set(target cairnfield_${name})
  if(ARG_SINGLETONS)
    set_source_files_properties(${ARG_SINGLETONS} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
  endif()
  add_library(${target} STATIC ${ARG_SOURCES})
  add_library(Cairnfield::${name} ALIAS ${target})
  cairnfield_moc(${target})
  list(TRANSFORM ARG_LINKS PREPEND Cairnfield::)
  list(TRANSFORM ARG_TYPES_FROM PREPEND Cairnfield.)
  target_link_libraries(${target} PUBLIC cairnfield_compile Qt6::Qml Qt6::Quick ${ARG_LINKS} ${ARG_LIBRARIES})
  # The registration that Qt generates includes headers by their bare name.
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  qt_add_qml_module(${target}
    URI Cairnfield.${name}
    VERSION 1.0
    RESOURCE_PREFIX /qt/qml
    OUTPUT_DIRECTORY "${CAIRNFIELD_QML_DIRECTORY}/Cairnfield/${name}"
    IMPORT_PATH "${CAIRNFIELD_QML_DIRECTORY}"
    PLUGIN_TARGET ${target}plugin
    DEPENDENCIES QtQuick ${ARG_TYPES_FROM}
    QML_FILES ${ARG_SINGLETONS} ${ARG_QML}
    RESOURCES ${ARG_RESOURCES}
    ${CAIRNFIELD_QML_NO_CACHE})
  add_library(Cairnfield::${name}Plugin ALIAS ${target}plugin)
endfunction()
