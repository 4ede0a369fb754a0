# KestrelPlugIn for iOS: Kestrel.fmplugin, a framework-type bundle that an app embeds and signs.
#
# FM_SDK_DIR is the folder of the vendor's SDK: FMWrapper/*.h and either FMWrapper.framework, or
# FMWrapper.xcframework with a framework for the device and one for the simulator.

set(packaging ${PROJECT_SOURCE_DIR}/packaging/ios)
option(KESTREL_WITHOUT_FM_SDK "Leave the host's functions to the loader, for a build that is inspected and never run" OFF)

set(KESTREL_FAULT_SOURCE "" CACHE FILEPATH "A faulty source to add to the plug-in, for the tests of the check")
set(KESTREL_FAULT_EXPORT "" CACHE STRING "A function of that source to export as well")

# Some build tools do not link a target that consists of object libraries only, so it gets a source.
set(own_source ${KESTREL_FAULT_SOURCE})
if(NOT own_source)
    set(own_source ${CMAKE_CURRENT_BINARY_DIR}/NoSource.cpp)
    file(CONFIGURE OUTPUT ${own_source} CONTENT "// Everything is in the object libraries.\n")
endif()
if(CMAKE_OSX_SYSROOT MATCHES "[Ss]imulator")
    set(KESTREL_BUNDLE_PLATFORM iPhoneSimulator)
else()
    set(KESTREL_BUNDLE_PLATFORM iPhoneOS)
endif()

add_library(KestrelPlugIn SHARED ${own_source} ${packaging}/PrivacyInfo.xcprivacy)
set_target_properties(KestrelPlugIn PROPERTIES
    FRAMEWORK ON
    BUNDLE_EXTENSION fmplugin
    OUTPUT_NAME Kestrel
    MACOSX_FRAMEWORK_INFO_PLIST ${packaging}/Info.plist.in
    RESOURCE ${packaging}/PrivacyInfo.xcprivacy
    LINKER_LANGUAGE CXX
    MACHO_CURRENT_VERSION ${PROJECT_VERSION}
    INSTALL_NAME_DIR "@rpath"
    BUILD_WITH_INSTALL_NAME_DIR ON
    LINK_DEPENDS ${packaging}/exports.txt
    XCODE_ATTRIBUTE_PRODUCT_BUNDLE_IDENTIFIER com.vex.kestrel
    XCODE_ATTRIBUTE_SKIP_INSTALL NO
    # The app signs the bundles that it embeds.
    XCODE_ATTRIBUTE_CODE_SIGNING_ALLOWED NO)
target_link_libraries(KestrelPlugIn PRIVATE
    KestrelObjects kestrel-foundation kestrel-sdk "-framework CoreFoundation")
target_link_options(KestrelPlugIn PRIVATE
    -Wl,-exported_symbols_list,${packaging}/exports.txt -Wl,-dead_strip
    -Wl,-map,${PROJECT_BINARY_DIR}/Kestrel.map)
if(KESTREL_FAULT_EXPORT)
    target_link_options(KestrelPlugIn PRIVATE -Wl,-exported_symbol,_${KESTREL_FAULT_EXPORT})
endif()

if(FM_SDK_DIR)
    set(slice ios-arm64)
    if(KESTREL_BUNDLE_PLATFORM STREQUAL iPhoneSimulator)
        set(slice "ios-*-simulator")
    endif()
    file(GLOB frameworks
        ${FM_SDK_DIR}/FMWrapper.framework
        ${FM_SDK_DIR}/FMWrapper.xcframework/${slice}/FMWrapper.framework)
    if(NOT frameworks)
        message(FATAL_ERROR "FM_SDK_DIR: ${FM_SDK_DIR} has no FMWrapper.framework for ${CMAKE_OSX_SYSROOT}")
    endif()
    list(GET frameworks 0 framework)
    cmake_path(GET framework PARENT_PATH framework_folder)
    target_link_options(KestrelPlugIn PRIVATE "SHELL:-F ${framework_folder}" "SHELL:-framework FMWrapper")
elseif(NOT KESTREL_WITHOUT_FM_SDK)
    message(FATAL_ERROR "FM_SDK_DIR is not set: the plug-in for iOS is linked with the SDK's framework")
endif()
