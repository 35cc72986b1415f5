# Third-party libraries, each named once. Nothing is downloaded: they come from the system.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(SQLite3 REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(OpenSSL 3 REQUIRED COMPONENTS Crypto)
pkg_check_modules(UUID REQUIRED IMPORTED_TARGET uuid)

find_library(CCTZ_LIBRARY cctz REQUIRED)
find_path(CCTZ_INCLUDE_DIR cctz/time_zone.h REQUIRED)
add_library(cctz::cctz UNKNOWN IMPORTED)
set_target_properties(cctz::cctz PROPERTIES
  IMPORTED_LOCATION ${CCTZ_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${CCTZ_INCLUDE_DIR})

find_library(ODBC_LIBRARY odbc REQUIRED)
find_path(ODBC_INCLUDE_DIR sql.h REQUIRED)
add_library(odbc::odbc UNKNOWN IMPORTED)
set_target_properties(odbc::odbc PROPERTIES
  IMPORTED_LOCATION ${ODBC_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${ODBC_INCLUDE_DIR})

if(SPCBASE_TOOLS)
  find_package(CLI11 REQUIRED)
endif()
if(SPCBASE_TESTS)
  find_package(GTest REQUIRED)
endif()
if(SPCBASE_BENCH)
  find_package(benchmark REQUIRED)
endif()
