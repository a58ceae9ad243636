# Installs the command line with its manual page and completions, the plug-in as a module, and the C interface
# and the engine as libraries with headers and with CMake and pkg-config files.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set_target_properties(krlengine PROPERTIES EXPORT_NAME engine)
target_compile_features(krlengine PUBLIC cxx_std_20)
target_include_directories(krlengine PUBLIC
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(krlengine PUBLIC $<INSTALL_INTERFACE:Threads::Threads>)
set_target_properties(krlc PROPERTIES EXPORT_NAME krlimage)
set_target_properties(krlc_static PROPERTIES EXPORT_NAME static)
target_include_directories(krlc INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_include_directories(krlc_static INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS krlc krlc_static krlengine EXPORT krlimage COMPONENT library)
install(FILES include/krlimage.h COMPONENT library DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT krlimage NAMESPACE krlimage:: FILE krlimageTargets.cmake COMPONENT library
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/krlimage)
install(DIRECTORY include/krlimage COMPONENT library DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")

# For the Python package, which would compile these again otherwise.
install(TARGETS krlplayer krlhost COMPONENT scripts EXCLUDE_FROM_ALL)

configure_package_config_file(cmake/krlimageConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/krlimageConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/krlimage)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/krlimageConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/krlimageConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/krlimageConfigVersion.cmake COMPONENT library
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/krlimage)
# Relative, so that an installation can be relocated.
file(RELATIVE_PATH up_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(module krlimage krlimage-engine)
  configure_file(cmake/${module}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc COMPONENT library
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(TARGETS krlImageXtra LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/krlimage COMPONENT program)
install(TARGETS krlimage COMPONENT program)
install(DIRECTORY examples/pictures COMPONENT program DESTINATION ${CMAKE_INSTALL_DATADIR}/krlimage
  FILES_MATCHING PATTERN "*.png")
install(FILES docs/methods.md COMPONENT program DESTINATION ${CMAKE_INSTALL_DATADIR}/krlimage/docs)
install(DIRECTORY docs/pictures/methods COMPONENT program DESTINATION ${CMAKE_INSTALL_DATADIR}/krlimage/docs/pictures)
install(DIRECTORY looks COMPONENT program DESTINATION ${CMAKE_INSTALL_DATADIR}/krlimage
  FILES_MATCHING PATTERN "*.krl")

# Generated from the command line itself.
function(krl_install_output file folder)
  set(made ${CMAKE_CURRENT_BINARY_DIR}/told/${file})
  add_custom_command(OUTPUT ${made} COMMAND krlimage ${ARGN} > ${made} DEPENDS krlimage VERBATIM)
  set_property(GLOBAL APPEND PROPERTY KRL_TOLD ${made})
  install(FILES ${made} DESTINATION ${folder} COMPONENT program)
endfunction()
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/told/bash ${CMAKE_CURRENT_BINARY_DIR}/told/zsh)
krl_install_output(krlimage.1 ${CMAKE_INSTALL_MANDIR}/man1 man)
krl_install_output(bash/krlimage ${CMAKE_INSTALL_DATADIR}/bash-completion/completions completions bash)
krl_install_output(zsh/_krlimage ${CMAKE_INSTALL_DATADIR}/zsh/site-functions completions zsh)
get_property(told GLOBAL PROPERTY KRL_TOLD)
add_custom_target(krl_told ALL DEPENDS ${told})
