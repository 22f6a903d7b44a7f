# The Debian package of the program: cmake --build build/release --target package
set(TARVEX_MAINTAINER "The developers of Tarvex" CACHE STRING "Who answers for the package: NAME <ADDRESS>")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarvex)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME tarvex)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TARVEX_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ca-certificates")  # whom ntrips:// trusts
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
    "It reads GNSS receivers over serial lines, TCP and recorded logs, brings
positions into the job's grid, stores points and journals every observation,
converts coordinates, and carries road design for stakeout.")
include(CPack)
