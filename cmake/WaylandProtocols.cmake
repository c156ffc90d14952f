# vantrel_wayland_protocols(TARGET XML...): a static library of the client code that wayland-scanner
# generates from the protocol descriptions, with their headers (<name>-client.h) on its include path.
# Generated C: the project's C++ warning flags do not apply to it, C's do.
enable_language(C)
find_package(PkgConfig REQUIRED)
pkg_check_modules(WAYLAND_CLIENT REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(WAYLAND_SCANNER wayland-scanner wayland_scanner)

function(vantrel_wayland_protocols target)
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${target})
  add_library(${target} STATIC)
  set_property(TARGET ${target} PROPERTY COMPILE_OPTIONS -Wall -Wextra -Werror)
  target_include_directories(${target} SYSTEM PUBLIC ${generated})
  target_link_libraries(${target} PUBLIC PkgConfig::WAYLAND_CLIENT)
  foreach(xml ${ARGN})
    get_filename_component(name ${xml} NAME_WE)
    add_custom_command(
      OUTPUT ${generated}/${name}-client.h ${generated}/${name}.c
      COMMAND ${CMAKE_COMMAND} -E make_directory ${generated}
      COMMAND ${WAYLAND_SCANNER} client-header ${xml} ${generated}/${name}-client.h
      COMMAND ${WAYLAND_SCANNER} private-code ${xml} ${generated}/${name}.c
      DEPENDS ${xml}
      VERBATIM)
    target_sources(${target} PRIVATE ${generated}/${name}.c ${generated}/${name}-client.h)
  endforeach()
endfunction()
