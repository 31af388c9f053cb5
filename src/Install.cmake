# Headers, library, CMake package and pkg-config file.
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/KTV_DataSource)

foreach(header IN LISTS public_headers)
    get_filename_component(directory ${header} DIRECTORY)
    install(FILES ${header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KTV_DataSource/${directory})
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ktv_datasource_export.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KTV_DataSource)

install(TARGETS KTV_DataSource EXPORT KTV_DataSourceTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT KTV_DataSourceTargets
    NAMESPACE KTV_DataSource::
    DESTINATION ${package_directory})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KTV_DataSourceConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSourceConfig.cmake
    INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSourceConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSourceConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSourceConfigVersion.cmake
    DESTINATION ${package_directory})

# The platform library may come from any maker, so its flags are taken from its target.
set(platform KTV_Platform::KTV_Platform)
get_target_property(platform_type ${platform} TYPE)
if(NOT KTV_PLATFORM_LIBRARY AND NOT KTV_PLATFORM_PACKAGE)
    set(pkgconfig_platform_libs -lKTV_Platform)
    set(pkgconfig_platform_cflags -DKTV_PLATFORM_STANDIN)
else()
    if(platform_type STREQUAL INTERFACE_LIBRARY)
        set(libraries "$<TARGET_PROPERTY:${platform},INTERFACE_LINK_LIBRARIES>")
        set(pkgconfig_platform_libs
            "$<JOIN:$<FILTER:${libraries},EXCLUDE,::>, >")
    else()
        set(pkgconfig_platform_libs "$<TARGET_FILE:${platform}>")
    endif()
    set(directories "$<TARGET_PROPERTY:${platform},INTERFACE_INCLUDE_DIRECTORIES>")
    set(pkgconfig_platform_cflags "$<$<BOOL:${directories}>:-I$<JOIN:${directories}, -I>>")
endif()
# Relative to the file itself, because `cmake --install --prefix` may choose another place.
file(RELATIVE_PATH pkgconfig_to_prefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/KTV_DataSource.pc.in
    ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSource.pc.configured @ONLY)
file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSource.pc
    INPUT ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSource.pc.configured)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KTV_DataSource.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
