# Options that the project's own targets share. They are attached to targets, so that foreign code (GoogleTest)
# keeps its own options. The sanitizers are set globally, because all code needs them.

add_library(kestrel-warnings INTERFACE)
target_compile_options(kestrel-warnings INTERFACE -Wall -Wextra -Wpedantic
                       $<$<COMPILE_LANG_AND_ID:CXX,Clang,AppleClang>:-Wreserved-identifier>)

# A missing library is an error at link time instead of load time. The sanitizers' build cannot have this
# check, because the sanitizers' functions come from the executable.
add_library(kestrel-no-undefined INTERFACE)

if(KESTREL_SANITIZE)
    # fuzzer-no-link adds the coverage that guides the fuzzers.
    add_compile_options(-fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
else()
    target_link_options(kestrel-no-undefined INTERFACE -Wl,-z,defs)
endif()

if(KESTREL_COVERAGE)
    add_link_options(-fprofile-instr-generate)
endif()

# Headers for programs that use the host: the host's as "host/…", the interface's as <FMWrapper/…>.
add_library(kestrel-host-headers INTERFACE)
target_include_directories(kestrel-host-headers INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)

# Headers for plug-ins: the interface, without the host.
add_library(kestrel-sdk INTERFACE)
if(FM_SDK_DIR)
    if(NOT EXISTS ${FM_SDK_DIR}/FMWrapper/FMXExtern.h)
        message(FATAL_ERROR "FM_SDK_DIR: ${FM_SDK_DIR} has no FMWrapper/FMXExtern.h")
    endif()
    target_include_directories(kestrel-sdk SYSTEM INTERFACE ${FM_SDK_DIR})
else()
    target_include_directories(kestrel-sdk INTERFACE ${PROJECT_SOURCE_DIR}/include)
endif()

# Paths of the files that tests, benchmarks and fuzzers load, run and read.
add_library(kestrel-paths INTERFACE)
set(KESTREL_BROKEN_DIR ${PROJECT_BINARY_DIR}/broken)
target_compile_definitions(kestrel-paths INTERFACE
    KESTREL_PLUGIN_PATH="${PROJECT_BINARY_DIR}/Kestrel.fmplugin.so"
    KESTREL_HOST_PATH="${PROJECT_BINARY_DIR}/kestrel-host"
    KESTREL_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    KESTREL_BROKEN_DIR="${KESTREL_BROKEN_DIR}")
