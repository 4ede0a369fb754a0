# Builds the plug-in for an iPhone without a Mac's tools and SDK: with the same Clang as all other builds here,
# LLVM's linker for Apple's binaries, and the stand-in for the SDK that make-sdk.sh puts into
# KESTREL_STAND_IN_SDK. The result is for inspection only. It cannot be shipped, because the stand-in's
# libraries have no symbols.

set(CMAKE_SYSTEM_NAME iOS)
set(CMAKE_SYSTEM_PROCESSOR arm64)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KESTREL_STAND_IN_SDK)

set(CMAKE_OSX_SYSROOT ${KESTREL_STAND_IN_SDK} CACHE PATH "")
set(CMAKE_OSX_ARCHITECTURES arm64 CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET 16.0 CACHE STRING "")

set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
foreach(language IN ITEMS C CXX OBJCXX)
    set(CMAKE_${language}_COMPILER_TARGET arm64-apple-ios16.0)
endforeach()
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19 REQUIRED)
find_program(KESTREL_LD64 ld64.lld-19 REQUIRED)

# The flags select the SDK's libc++ instead of the compiler's. The definitions are those of the SDK's own
# configuration header.
string(CONCAT flags
    "-nostdinc++ -isystem ${KESTREL_STAND_IN_SDK}/usr/include/c++/v1 "
    "-isystem ${CMAKE_CURRENT_LIST_DIR}/headers -include ChronoWithoutFormat.h "
    "-D_LIBCPP_ABI_VERSION=1 -D_LIBCPP_ABI_NAMESPACE=__1 -D_LIBCPP_PROVIDES_DEFAULT_RUNE_TABLE")
set(CMAKE_CXX_FLAGS_INIT "${flags}")

# The libraries have no symbols here, so undefined symbols are left to the loader. The check of the result
# compares them with its lists.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld --ld-path=${KESTREL_LD64} -Wl,-undefined,dynamic_lookup")
set(KESTREL_WITHOUT_FM_SDK ON CACHE BOOL "")
