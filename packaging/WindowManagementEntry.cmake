# Run at install time (see CMakeLists.txt): writes the entry that names the installed program by its
# absolute path, under the prefix being installed into, and installs it.
# In: template, entry (file name), app_id, bindir and datadir (as configured), work (a build folder).
cmake_path(ABSOLUTE_PATH bindir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
cmake_path(ABSOLUTE_PATH datadir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
set(VANTREL_APP_ID "${app_id}")
set(VANTREL_EXECUTABLE "${bindir}/vantrel")
configure_file("${template}" "${work}/${entry}" @ONLY)
file(INSTALL "${work}/${entry}" DESTINATION "${datadir}/applications")
