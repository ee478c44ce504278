# One library per folder of src/. What a folder may include is what its target links.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)
set(CMAKE_AUTOMOC ON)
option(TALLYGLASS_WERROR "Treat warnings as errors" OFF)
set(TALLYGLASS_SITE "https://tallyglass.example" CACHE STRING "Where new versions are offered")
set(TALLYGLASS_FEED_URL "" CACHE STRING "Where the update feed is; without one nothing is looked for")
set(TALLYGLASS_PUBLIC_KEY "" CACHE STRING "The key that updates are signed with")
set(TALLYGLASS_BUNDLE_ID "" CACHE STRING "The application's identifier, as in com.example.Tallyglass")
set(TALLYGLASS_BUILD "" CACHE STRING "The number of this build, which grows with every release")
set(TALLYGLASS_CLAUDE_API "https://api.anthropic.com" CACHE STRING "The host that is asked for Claude's limits")

set(TG_WARNINGS
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    -Wno-missing-field-initializers # designated initialisers name only what differs
    $<$<BOOL:${TALLYGLASS_WERROR}>:-Werror>)

add_library(tg_common INTERFACE)
target_include_directories(tg_common INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(tg_common INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)

# tg_library(model SOURCES … LINK …)  ->  target tg_model
function(tg_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(tg_${name} STATIC ${ARG_SOURCES})
    target_compile_options(tg_${name} PRIVATE ${TG_WARNINGS})
    target_link_libraries(tg_${name} PUBLIC tg_common ${ARG_LINK})
endfunction()

# tg_test(model/TextsTest LINK tg_model)  ->  ctest "model/TextsTest"
function(tg_test path)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    string(REPLACE "/" "_" target ${path})
    add_executable(${target} ${path}.cpp)
    target_compile_options(${target} PRIVATE ${TG_WARNINGS})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${target} PRIVATE ${ARG_LINK} Qt6::Test)
    add_test(NAME ${path} COMMAND ${target})
    # A zone off UTC, so that a missed conversion shows.
    set_tests_properties(${path} PROPERTIES TIMEOUT 60 ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=Asia/Tokyo")
endfunction()
