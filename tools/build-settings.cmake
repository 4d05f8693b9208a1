# What every target shares: warnings as errors, wide entry points, links that are the same byte for byte on each build.
add_library(build_settings INTERFACE)
target_compile_definitions(build_settings INTERFACE UNICODE _UNICODE WINVER=0x0A00 _WIN32_WINNT=0x0A00)
target_compile_options(build_settings INTERFACE
    -Wall -Wextra -Werror
    -ffunction-sections -fdata-sections
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
target_include_directories(build_settings INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/mfc)
target_link_options(build_settings INTERFACE -static -municode -Wl,--gc-sections -Wl,--no-insert-timestamp)

# For the program's own code alone, not for the sample and the tests. Several programs add to the same counters.
add_library(coverage_settings INTERFACE)
if(LUMACAP_COVERAGE)
    target_compile_options(coverage_settings INTERFACE --coverage -fprofile-update=single)
    target_link_options(coverage_settings INTERFACE --coverage)
endif()

# The resource compiler doesn't tell what its source includes. Holds for the folder that calls it.
function(depends_on_resources source)
    file(GLOB parts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/res/*)
    string(REPLACE "." "," commas ${PRODUCT_VERSION})
    set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS "${parts}"
        COMPILE_DEFINITIONS "SETUP_VERSION=${PRODUCT_VERSION};SETUP_VERSION_COMMAS=${commas}")
endfunction()
