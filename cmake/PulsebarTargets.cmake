# Helpers that give every target of the project the same warnings, sanitizers and include root.

# A second build of the same sources (another preset, another clone) takes its objects from the cache.
if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(PULSEBAR_CCACHE ccache)
  if(PULSEBAR_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER
      env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1 "${PULSEBAR_CCACHE}")
  endif()
endif()

add_library(pulsebar_options INTERFACE)
target_include_directories(pulsebar_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(pulsebar_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 reports null dereferences inside Qt's inlined containers at -O2.
  target_compile_options(pulsebar_options INTERFACE -Wno-null-dereference)
endif()
if(PULSEBAR_WERROR)
  target_compile_options(pulsebar_options INTERFACE -Werror)
endif()
if(PULSEBAR_SANITIZE)
  target_compile_options(pulsebar_options INTERFACE
    -fsanitize=${PULSEBAR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(pulsebar_options INTERFACE -fsanitize=${PULSEBAR_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ loses track of what is initialised in code that it has instrumented (std::regex, for one).
    target_compile_options(pulsebar_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(PULSEBAR_COVERAGE)
  target_compile_options(pulsebar_options INTERFACE --coverage)
  target_link_options(pulsebar_options INTERFACE --coverage)
endif()
if(PULSEBAR_FUZZ)
  target_compile_options(pulsebar_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  target_link_options(pulsebar_options INTERFACE -fsanitize=address,undefined)
endif()
# Qt's own macros for foreach, signals and slots stay out of headers shared with other libraries.
target_compile_definitions(pulsebar_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# pulsebar_library(name [QT] SOURCES ... LIBS ...): one static library per folder. QT turns moc on.
function(pulsebar_library name)
  cmake_parse_arguments(arg "QT" "" "SOURCES;LIBS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC pulsebar_options ${arg_LIBS})
  set_target_properties(${name} PROPERTIES AUTOMOC ${arg_QT})
endfunction()

# pulsebar_program(name [QT] [LIBEXEC] SOURCES ... LIBS ...): LIBEXEC programs go where helpers are looked up.
function(pulsebar_program name)
  cmake_parse_arguments(arg "QT;LIBEXEC" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE pulsebar_options ${arg_LIBS})
  set_target_properties(${name} PROPERTIES AUTOMOC ${arg_QT})
  if(arg_LIBEXEC)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PULSEBAR_LIBEXEC_BUILD_DIR}")
    install(TARGETS ${name} DESTINATION "${PULSEBAR_LIBEXEC_INSTALL_DIR}")
  else()
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
    install(TARGETS ${name} DESTINATION "${CMAKE_INSTALL_BINDIR}")
  endif()
endfunction()

# What every test finds in its environment: no screen, a fixed locale, sanitizers that stop at the first report.
set(PULSEBAR_TEST_ENVIRONMENT
  "QT_QPA_PLATFORM=offscreen"
  "LC_ALL=C.UTF-8"
  "ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1"
  "UBSAN_OPTIONS=print_stacktrace=1"
  "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")

# pulsebar_test(name [QT] [SERIAL] SOURCES ... LIBS ... [MAIN lib] [LABEL label] [TIMEOUT seconds] [ENVIRONMENT NAME=value ...]):
# a GoogleTest program whose cases are separate CTest tests. The label is "quick" unless said otherwise
# ("e2e": the real program on a private bus and display). MAIN replaces gtest_main (a Qt program brings its own).
# SERIAL: nothing else runs beside its cases, which depend on how soon a window manager answers.
function(pulsebar_test name)
  cmake_parse_arguments(arg "QT;SERIAL" "MAIN;LABEL;TIMEOUT" "SOURCES;LIBS;ENVIRONMENT" ${ARGN})
  if(NOT arg_MAIN)
    set(arg_MAIN GTest::gtest_main)
  endif()
  if(NOT arg_LABEL)
    set(arg_LABEL quick)
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  if(NOT arg_SERIAL)
    set(arg_SERIAL FALSE)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE pulsebar_options ${arg_LIBS} GTest::gmock GTest::gtest ${arg_MAIN})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}/helpers")
  target_compile_definitions(${name} PRIVATE PULSEBAR_FIXTURES="${PROJECT_SOURCE_DIR}/tests/fixtures")
  set_target_properties(${name} PROPERTIES AUTOMOC ${arg_QT} RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${arg_LABEL} TIMEOUT ${arg_TIMEOUT} RUN_SERIAL ${arg_SERIAL}
    ENVIRONMENT "${PULSEBAR_TEST_ENVIRONMENT};${arg_ENVIRONMENT}")
endfunction()

# pulsebar_script_test(name COMMAND ... [LABEL label] [TIMEOUT seconds] [ENVIRONMENT NAME=value ...]):
# a CTest test that runs a command and looks at its exit code.
function(pulsebar_script_test name)
  cmake_parse_arguments(arg "" "LABEL;TIMEOUT" "COMMAND;ENVIRONMENT" ${ARGN})
  if(NOT arg_LABEL)
    set(arg_LABEL quick)
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  add_test(NAME ${name} COMMAND ${arg_COMMAND})
  set_tests_properties(${name} PROPERTIES LABELS ${arg_LABEL} TIMEOUT ${arg_TIMEOUT}
    ENVIRONMENT "${PULSEBAR_TEST_ENVIRONMENT};${arg_ENVIRONMENT}")
endfunction()

# All fuzz targets and nothing else; what they do not link need not be built.
if(PULSEBAR_FUZZ)
  add_custom_target(fuzzers)
endif()

# pulsebar_fuzzer(name SOURCES ... LIBS ...): a libFuzzer program with its seeds in fuzz/corpus/<name>/.
function(pulsebar_fuzzer name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(fuzz_${name} ${arg_SOURCES})
  target_link_libraries(fuzz_${name} PRIVATE pulsebar_options ${arg_LIBS} -fsanitize=fuzzer)
  target_include_directories(fuzz_${name} PRIVATE "${PROJECT_SOURCE_DIR}/helpers")
  set_target_properties(fuzz_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/fuzz")
  add_dependencies(fuzzers fuzz_${name})
endfunction()

# pulsebar_benchmark(name SOURCES ... LIBS ...)
function(pulsebar_benchmark name)
  cmake_parse_arguments(arg "QT" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE pulsebar_options ${arg_LIBS} benchmark::benchmark)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/helpers")
  set_target_properties(${name} PROPERTIES AUTOMOC ${arg_QT} RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bench")
endfunction()
