# Options that the project's own targets share. They are attached to targets, not set globally, so that
# code which is built here but not ours (GoogleTest) keeps its own; the sanitizers alone must be everywhere.

add_library(kestrel-warnings INTERFACE)
target_compile_options(kestrel-warnings INTERFACE -Wall -Wextra -Wpedantic)

# A shared library that forgets to link something fails here, not when it is loaded. The sanitizers'
# functions come from the executable, so there the check cannot be had.
add_library(kestrel-no-undefined INTERFACE)

if(KESTREL_SANITIZE)
    # fuzzer-no-link: the coverage that guides the fuzzers, in the libraries that they exercise.
    add_compile_options(-fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
else()
    target_link_options(kestrel-no-undefined INTERFACE -Wl,-z,defs)
endif()

if(KESTREL_COVERAGE)
    add_link_options(-fprofile-instr-generate)
endif()

# What a program around the host sees: its headers as "host/…", the interface's as <FMWrapper/…>.
add_library(kestrel-host-headers INTERFACE)
target_include_directories(kestrel-host-headers INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)

# What a plug-in sees: the interface and nothing of the host.
add_library(kestrel-sdk INTERFACE)
if(FM_SDK_DIR)
    if(NOT EXISTS ${FM_SDK_DIR}/FMWrapper/FMXExtern.h)
        message(FATAL_ERROR "FM_SDK_DIR: ${FM_SDK_DIR} has no FMWrapper/FMXExtern.h")
    endif()
    target_include_directories(kestrel-sdk SYSTEM INTERFACE ${FM_SDK_DIR})
else()
    target_include_directories(kestrel-sdk INTERFACE ${PROJECT_SOURCE_DIR}/include)
endif()

# Where tests, benchmarks and fuzzers find what they load, run and read.
add_library(kestrel-paths INTERFACE)
set(KESTREL_BROKEN_DIR ${PROJECT_BINARY_DIR}/broken)
target_compile_definitions(kestrel-paths INTERFACE
    KESTREL_PLUGIN_PATH="${PROJECT_BINARY_DIR}/Kestrel.fmplugin.so"
    KESTREL_HOST_PATH="${PROJECT_BINARY_DIR}/kestrel-host"
    KESTREL_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    KESTREL_BROKEN_DIR="${KESTREL_BROKEN_DIR}")
