# What every target of the project is built with: warnings, sanitizers and definitions on one interface target.
add_library(quillpost_options INTERFACE)
target_compile_features(quillpost_options INTERFACE cxx_std_20)
target_compile_options(quillpost_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wconversion -Wno-sign-conversion -Wnull-dereference -Wimplicit-fallthrough)
if(QUILLPOST_WARNINGS_AS_ERRORS)
  target_compile_options(quillpost_options INTERFACE -Werror)
endif()
if(QUILLPOST_SANITIZE)
  target_compile_options(quillpost_options INTERFACE
    -fsanitize=${QUILLPOST_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    -Wno-null-dereference $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>) # The compiler knows less of instrumented code.
  target_link_options(quillpost_options INTERFACE -fsanitize=${QUILLPOST_SANITIZE})
endif()
if(QUILLPOST_FUZZ)
  target_compile_options(quillpost_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
target_compile_definitions(quillpost_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING)

# quillpost_library(<room> SOURCES … [LINKS <rooms and libraries others may see>] [PRIVATE_LINKS …])
# A room is one static library that links only the rooms below it, so that an include which runs up a floor
# does not compile.
function(quillpost_library room)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  set(target quillpost_${room})
  add_library(${target} STATIC ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  # Headers are included by their room: #include "foundation/Log.h". Each room has an include root of its own that
  # holds nothing but a link to the room, so a room that is not linked cannot be included.
  set(include_root "${CMAKE_BINARY_DIR}/include/${room}")
  file(MAKE_DIRECTORY "${include_root}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${include_root}/${room}" SYMBOLIC)
  target_include_directories(${target} PUBLIC "${include_root}")
  target_link_libraries(${target} PUBLIC quillpost_options ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
endfunction()

# quillpost_window(<window> CONTROLLER <sources> VIEW <sources> [LINKS <libraries of the controller>]
#                  [VIEW_LINKS <libraries of the view>])
# A folder of src/ui: quillpost_ui_<window>, which links no widgets, and quillpost_ui_<window>_view over it. Either may
# be without sources; the library is then not made.
function(quillpost_window window)
  cmake_parse_arguments(ARG "" "" "CONTROLLER;VIEW;LINKS;VIEW_LINKS" ${ARGN})
  set(target quillpost_ui_${window})
  set(controller quillpost_ui)
  if(ARG_CONTROLLER)
    add_library(${target} STATIC ${ARG_CONTROLLER})
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    target_link_libraries(${target} PUBLIC quillpost_ui ${ARG_LINKS})
    set(controller ${target})
  endif()
  if(ARG_VIEW)
    add_library(${target}_view STATIC ${ARG_VIEW})
    set_target_properties(${target}_view PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
    target_link_libraries(${target}_view PUBLIC ${controller} ${ARG_VIEW_LINKS} Qt6::Widgets)
  endif()
endfunction()

# quillpost_test(<room> SOURCES … [LINKS …] [WIDGETS]): one test program for each folder, each of its tests run by
# ctest alone. With WIDGETS it has a QApplication on Qt's offscreen platform.
function(quillpost_test room)
  cmake_parse_arguments(ARG "WIDGETS" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  set(main quillpost_test_support)
  if(ARG_WIDGETS)
    set(main quillpost_widget_test_support)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  set(target test_${room})
  add_executable(${target} ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_link_libraries(${target} PRIVATE ${main} ${ARG_LINKS} GTest::gmock)
  # Lists lose all but their first element on their way into the discovered tests, so each variable has a property of
  # its own.
  gtest_discover_tests(${target} TEST_PREFIX "${room}/" DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${ARG_TIMEOUT}
    ENVIRONMENT "TSAN_OPTIONS=ignore_noninstrumented_modules=1 halt_on_error=1"
    ENVIRONMENT_MODIFICATION "ASAN_OPTIONS=set:detect_stack_use_after_return=1")
endfunction()
