# What every target of the project is compiled with, in one interface target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(TUPPI_CCACHE ccache)
if(TUPPI_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TUPPI_CCACHE})
endif()

add_library(tuppi_common INTERFACE)
target_compile_definitions(tuppi_common INTERFACE
  QT_DISABLE_DEPRECATED_BEFORE=0x060400
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_CONTEXTLESS_CONNECT
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_KEYWORDS
  QT_NO_FOREACH
  QT_NO_JAVA_STYLE_ITERATORS
  QT_STRICT_ITERATORS)
target_compile_options(tuppi_common INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wundef
  $<$<BOOL:${TUPPI_WERROR}>:-Werror>)
if(CMAKE_UNITY_BUILD)
  # It warns of local types in headers, and takes every source for one here.
  target_compile_options(tuppi_common INTERFACE -Wno-subobject-linkage)
endif()

# How resources are packed: by what every start loads anyway.
set(TUPPI_PACKING --compress-algo zlib)

if(TUPPI_SANITIZE)
  target_compile_options(tuppi_common INTERFACE
    -fsanitize=${TUPPI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tuppi_common INTERFACE -fsanitize=${TUPPI_SANITIZE})
  # In every program, as tests start programs with an environment of their own.
  add_library(tuppi_sanitizer_options OBJECT tests/support/SanitizerOptions.cpp)
  set_target_properties(tuppi_sanitizer_options PROPERTIES AUTOMOC OFF)
  target_compile_definitions(tuppi_sanitizer_options PRIVATE TUPPI_TESTS_FOLDER="${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(tuppi_common INTERFACE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:tuppi_sanitizer_options>>)
endif()

if(TUPPI_COVERAGE)
  # Counted atomically, as threads count the same line.
  target_compile_options(tuppi_common INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(tuppi_common INTERFACE --coverage)
endif()
