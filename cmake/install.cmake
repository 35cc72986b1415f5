# What is installed, and where: a tree that may be moved, in four components that are packages too.
#
#   library   libspcbase.so.N
#   dev       headers, CMake package, pkg-config file, documents
#   command   spc, its manual, completions and schemas
#   testkit   what a module's author tests with
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/spcbase)

# install_headers(COMPONENT PART): under the include folder, as they stand in the tree.
function(install_headers component part)
  execute_process(
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/public_headers ${PROJECT_SOURCE_DIR} ${part}
    OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  foreach(header IN LISTS headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
            COMPONENT ${component})
  endforeach()
endfunction()

install_headers(dev library)
install_headers(testkit testkit)

install(TARGETS spcbase EXPORT spcbaseTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT dev
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS spcbase_testkit spcbase_schema EXPORT spcbaseTestkitTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT testkit)
install(EXPORT spcbaseTargets NAMESPACE spcbase:: DESTINATION ${package_dir} COMPONENT dev)
install(EXPORT spcbaseTestkitTargets NAMESPACE spcbase:: DESTINATION ${package_dir} COMPONENT testkit)

configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/spcbaseConfig.cmake.in
  ${PROJECT_BINARY_DIR}/packaging/spcbaseConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/spcbaseConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/packaging/spcbaseConfig.cmake
              ${PROJECT_BINARY_DIR}/packaging/spcbaseConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT dev)

# The files find the tree from where they stand.
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
function(install_pkgconfig file component)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/${file}.pc.in ${PROJECT_BINARY_DIR}/packaging/${file}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/packaging/${file}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT ${component})
endfunction()
install_pkgconfig(spcbase dev)
install_pkgconfig(spcbase-testkit testkit)

file(RELATIVE_PATH library_from_program /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
set_target_properties(spc PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_program}")
install(TARGETS spc RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)
# Manual, completions and schemas, as spc_pages has written them while building.
install(DIRECTORY ${PROJECT_BINARY_DIR}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR} COMPONENT command)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)
install(DIRECTORY tools/spc/data DESTINATION ${CMAKE_INSTALL_DOCDIR}/tools/spc COMPONENT dev) # the guides import them
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.md" PATTERN "samples/*.cpp" PATTERN reference EXCLUDE)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The spcbase engineers <spcbase@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library dev command testkit)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libspcbase${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS tzdata)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "odbc-mariadb | odbc-postgresql | tdsodbc")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libspcbase-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME spc)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TESTKIT_PACKAGE_NAME libspcbase-testkit-dev)
set(CPACK_DEBIAN_TESTKIT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TESTKIT_PACKAGE_DEPENDS "unixodbc-dev, libsqlite3-dev")
set(CPACK_DEBIAN_TESTKIT_PACKAGE_RECOMMENDS "libgtest-dev, mariadb-server-core, mariadb-client-core, odbc-mariadb")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "base library of a statistical-process-control product
Keeps samples, profiles, revisions and what surrounds them in SQLite or on a server with an ODBC driver.")
set(CPACK_COMPONENT_DEV_DESCRIPTION "base library of an SPC product, development files
Headers, CMake package, pkg-config file and the guides.")
set(CPACK_COMPONENT_DEV_DEPENDS library)
set(CPACK_COMPONENT_COMMAND_DESCRIPTION "command for the databases of an SPC product
Makes, checks and audits databases, imports and shows samples, keeps revisions and data sources.")
set(CPACK_COMPONENT_COMMAND_DEPENDS library)
set(CPACK_COMPONENT_TESTKIT_DESCRIPTION "base library of an SPC product, test kit
Scripted sessions, private servers, plants, a held clock and a data-entry engine, to test modules with.")
set(CPACK_COMPONENT_TESTKIT_DEPENDS dev)
include(CPack)
