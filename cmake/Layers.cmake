# SPDX-License-Identifier: GPL-3.0-or-later

# The rooms of src/ from the bottom up: a room uses only itself and the ones before it. A room is a folder with
# the folders below it that are not rooms of their own. scripts/check-layers reads
# this list.
set(PLEXA_LAYERS
    platform raster metadata
    imageio/base imageio/container imageio/color imageio/embedded imageio/codecs imageio
    watermark presets images saving bulletin
    app cli
    ui/widgets ui/browser ui/preview ui/editors ui/presets ui/saving ui/metadata ui/bulletin ui/help ui/window)

# The settings of all targets: language, include root, warnings, sanitizers.
add_library(plexa_common INTERFACE)
target_compile_features(plexa_common INTERFACE cxx_std_20)
target_include_directories(plexa_common INTERFACE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_BINARY_DIR}/generated")
target_compile_definitions(plexa_common INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400
    $<$<CONFIG:Dev>:QT_FORCE_ASSERTS>)
target_compile_options(plexa_common INTERFACE -Wall -Wextra -Wpedantic -Wconversion
    $<$<BOOL:${PLEXA_WARNINGS_AS_ERRORS}>:-Werror>)
if(PLEXA_SANITIZE)
    target_compile_options(plexa_common INTERFACE -fsanitize=${PLEXA_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(plexa_common INTERFACE -fsanitize=${PLEXA_SANITIZE})
endif()

if(PLEXA_FUZZ)
    # Coverage counters for libFuzzer; without its main function, which plexa_fuzz() adds.
    target_compile_options(plexa_common INTERFACE -fsanitize=fuzzer-no-link)
endif()

# plexa_layer(<name> SOURCES <files> [PUBLIC <libraries>] [PRIVATE <libraries>])
# creates the static library of one folder of src/ with the alias plexa::<name>. <name> is the path of the folder
# with "_" for "/".
function(plexa_layer name)
    cmake_parse_arguments(LAYER "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(plexa_${name} STATIC ${LAYER_SOURCES})
    add_library(plexa::${name} ALIAS plexa_${name})
    set_target_properties(plexa_${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(plexa_${name} PUBLIC plexa_common ${LAYER_PUBLIC} PRIVATE ${LAYER_PRIVATE})
endfunction()

# plexa_test(<name> SOURCES <files> LINK <libraries> [TIMEOUT <seconds>])
# creates one Qt Test program and registers it with CTest. The program fixes its environment itself
# (tests/support/testenvironment.cpp), so it gives the same results when started by hand.
function(plexa_test name)
    cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LINK" ${ARGN})
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 120)
    endif()
    if(PLEXA_SANITIZE)
        math(EXPR TEST_TIMEOUT "${TEST_TIMEOUT} * 5")
    endif()
    add_executable(${name} ${TEST_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE plexa_common plexa_testenvironment Qt6::Test ${TEST_LINK})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${TEST_TIMEOUT})
endfunction()

# plexa_fuzz(<name> SOURCES <files> LINK <libraries>)
# creates one libFuzzer program. <name> begins with "fuzz_", by which scripts/test --fuzz finds it. Its start files
# are in tests/fuzz/corpus/<name>/ if that exists, else in tests/fuzz/corpus/.
function(plexa_fuzz name)
    cmake_parse_arguments(FUZZ "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${FUZZ_SOURCES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE plexa_common ${FUZZ_LINK})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
