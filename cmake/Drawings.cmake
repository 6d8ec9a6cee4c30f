# Drawings are recorded as what they paint, so that nobody needs the library that reads them but the build.
find_package(Qt6 6.4 REQUIRED COMPONENTS Svg)
add_executable(record-drawings ${CMAKE_CURRENT_LIST_DIR}/RecordDrawings.cpp)
target_link_libraries(record-drawings PRIVATE Qt6::Svg)

# The drawings as resources of the target, ":/PREFIX/NAME.pic".
function(tuppi_drawings target prefix)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/drawings/${prefix})
  file(MAKE_DIRECTORY ${folder})
  list(TRANSFORM ARGN REPLACE "^.*/(.*)[.]svg$" "${folder}/\\1.pic" OUTPUT_VARIABLE pictures)
  add_custom_command(OUTPUT ${pictures} COMMAND record-drawings ${folder} ${ARGN} DEPENDS record-drawings ${ARGN} VERBATIM)
  qt_add_resources(${target} ${target}_${prefix}_drawings
    PREFIX /${prefix} BASE ${folder} OPTIONS ${TUPPI_PACKING} FILES ${pictures})
endfunction()
