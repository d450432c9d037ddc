include(CMakePackageConfigHelpers)

install(TARGETS shared_persistence fe_db EXPORT fe_db
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT fe_db NAMESPACE fe_db:: FILE fe_db-targets.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/fe_db)
configure_package_config_file(cmake/fe_db-config.cmake.in ${PROJECT_BINARY_DIR}/fe_db-config.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/fe_db
                              PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/fe_db-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/fe_db-config.cmake
              ${PROJECT_BINARY_DIR}/fe_db-config-version.cmake
              cmake/FeDbRecord.cmake
              cmake/FeDbMergeUnits.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/fe_db)
