# To be included after project(): the languages and facts that only macOS has.
enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
add_compile_options($<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)

# For one function, since the widget centre speaks nothing else; without Swift that is left out.
if(NOT CMAKE_Swift_COMPILER_TARGET)
    set(CMAKE_Swift_COMPILER_TARGET
        ${CMAKE_SYSTEM_PROCESSOR}-apple-macosx${CMAKE_OSX_DEPLOYMENT_TARGET})
endif()
include(CheckLanguage)
check_language(Swift)
if(CMAKE_Swift_COMPILER)
    enable_language(Swift)
endif()

find_library(TALLYGLASS_SPARKLE Sparkle DOC "The framework that installs updates")

# A bundle has an identifier and a number whether or not the builder names them.
if(NOT TALLYGLASS_BUNDLE_ID)
    set(TALLYGLASS_BUNDLE_ID dev.local.Tallyglass)
endif()
if(NOT TALLYGLASS_BUILD)
    set(TALLYGLASS_BUILD 1)
endif()
