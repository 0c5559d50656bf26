# Installation: the library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

target_include_directories(FilterProcessor INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# Who links the library need not have the host's functions: a program may list the filters or call kernels only.
if(NOT FILTERPROCESSOR_SDK)
  set(link_without_host -Wl,--allow-shlib-undefined)
  target_link_options(FilterProcessor INTERFACE ${link_without_host})
endif()

install(TARGETS FilterProcessor EXPORT FilterProcessor LIBRARY DESTINATION ${FILTERPROCESSOR_PLUGIN_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/filterprocessor DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# The filter classes, for C++ callers that link the library directly.
add_library(FilterProcessorClasses INTERFACE)
set_target_properties(FilterProcessorClasses PROPERTIES EXPORT_NAME Classes)
target_link_libraries(FilterProcessorClasses INTERFACE FilterProcessor)
set(classes_dir ${CMAKE_INSTALL_INCLUDEDIR}/filterprocessor/classes)
target_include_directories(FilterProcessorClasses INTERFACE $<INSTALL_INTERFACE:${classes_dir}>)
target_compile_features(FilterProcessorClasses INTERFACE cxx_std_20)
install(TARGETS FilterProcessorClasses EXPORT FilterProcessor)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/filters ${PROJECT_SOURCE_DIR}/src/common DESTINATION ${classes_dir}
  FILES_MATCHING PATTERN "*.h" PATTERN "depth_converter.h" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/src/framework/priv_filter.h ${PROJECT_SOURCE_DIR}/src/framework/host_handles.h
  ${PROJECT_SOURCE_DIR}/src/framework/profile_cache.h
        DESTINATION ${classes_dir}/framework)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/FilterProcessor)
install(EXPORT FilterProcessor NAMESPACE FilterProcessor:: FILE FilterProcessorTargets.cmake
        DESTINATION ${package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/FilterProcessorConfig.cmake.in
  ${PROJECT_BINARY_DIR}/FilterProcessorConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/FilterProcessorConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/FilterProcessorConfig.cmake
  ${PROJECT_BINARY_DIR}/FilterProcessorConfigVersion.cmake DESTINATION ${package_dir})
file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/filterprocessor.pc.in ${PROJECT_BINARY_DIR}/filterprocessor.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/filterprocessor.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
