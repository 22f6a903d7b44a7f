# find_package(Tarvex) for another CMake program: Tarvex::core, Tarvex::coordsys and so on. It includes
# "tarvex/coordsys/chain/calculator.h"; the installed headers include one another in the same way, so that a
# folder core/ of its own is never taken for ours.
include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY TARVEX_LIBRARIES)
install(TARGETS ${libraries} EXPORT TarvexTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarvex COMPONENT development)
install(EXPORT TarvexTargets NAMESPACE Tarvex:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tarvex
        COMPONENT development)
configure_package_config_file(cmake/TarvexConfig.cmake.in TarvexConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tarvex
                              PATH_VARS TARVEX_MODULE_INSTALL_FOLDER)
write_basic_package_version_file(TarvexConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TarvexConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TarvexConfigVersion.cmake
              ${PROJECT_SOURCE_DIR}/cmake/installed_modules.cpp
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tarvex COMPONENT development)

install(CODE [[
  file(GLOB_RECURSE headers "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/include/tarvex/*.h")
  foreach(header IN LISTS headers)
    file(READ "${header}" text)
    string(REGEX REPLACE "#include \"(platform|core|tls|coordsys|gnss|roads|exchange)/" "#include \"tarvex/\\1/" text
                         "${text}")
    file(WRITE "${header}" "${text}")
  endforeach()
]] COMPONENT development)

# The pages for people, with the links between them as they are here.
set(doc_folder ${CMAKE_INSTALL_DATADIR}/doc/tarvex)
install(FILES README.md CHANGELOG.md DESTINATION ${doc_folder} COMPONENT program)
install(DIRECTORY docs DESTINATION ${doc_folder} COMPONENT program)
