# Objective-C++ with the compiler and flags of C++, and Foundation: the system's own, or GNUstep's.
#
# kestrel-foundation: the options and libraries of sources that include Foundation.

if(NOT CMAKE_OBJCXX_COMPILER)
    set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
endif()
foreach(suffix IN ITEMS "" _DEBUG _RELEASE _RELWITHDEBINFO _MINSIZEREL)
    set(CMAKE_OBJCXX_FLAGS${suffix} "${CMAKE_CXX_FLAGS${suffix}}")
endforeach()
enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)

add_library(kestrel-foundation INTERFACE)
if(APPLE)
    target_compile_options(kestrel-foundation INTERFACE -fobjc-arc)
    target_link_libraries(kestrel-foundation INTERFACE "-framework Foundation")
else()
    find_path(GNUSTEP_INCLUDE_DIR Foundation/Foundation.h PATHS /usr/include/GNUstep REQUIRED)
    # The runtime's headers are part of GCC and lie in its folder.
    file(GLOB gcc_include_dirs /usr/lib/gcc/*/*/include)
    list(SORT gcc_include_dirs COMPARE NATURAL ORDER DESCENDING)
    find_path(OBJC_INCLUDE_DIR objc/objc.h PATHS ${gcc_include_dirs} REQUIRED)
    target_compile_options(kestrel-foundation INTERFACE
        -fblocks -fobjc-runtime=gcc -fexceptions -fobjc-exceptions
        -fconstant-string-class=NSConstantString
        # GCC's folder has its own versions of the compiler's headers as well, so it comes last.
        "SHELL:-idirafter ${OBJC_INCLUDE_DIR}")
    target_include_directories(kestrel-foundation SYSTEM INTERFACE
        ${GNUSTEP_INCLUDE_DIR} ${PROJECT_SOURCE_DIR}/cmake/gnustep)
    # GNUstep's library also contains functions of the blocks runtime. They do not recognise a block on the
    # stack from this compiler and do not copy it, so the real runtime is linked first.
    target_link_libraries(kestrel-foundation INTERFACE BlocksRuntime gnustep-base objc)
endif()
