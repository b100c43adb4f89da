# Targets that check the sources: layers, format, lint.
add_custom_target(check-layers
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-layers" WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
add_custom_target(check-format
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-format" WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
add_custom_target(format
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-format" --fix WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
add_custom_target(lint
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/lint" "${CMAKE_BINARY_DIR}" WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)

# pulsebar_reach(out target): everything that `target` links, directly or through others.
function(pulsebar_reach out target)
  set(seen)
  set(todo ${target})
  while(todo)
    list(POP_FRONT todo item)
    # A static library's private parts arrive as $<LINK_ONLY:...>; they are linked all the same.
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" item "${item}")
    if(item IN_LIST seen)
      continue()
    endif()
    list(APPEND seen "${item}")
    if(TARGET "${item}")
      foreach(property IN ITEMS LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
        get_target_property(libraries "${item}" ${property})
        if(libraries)
          list(APPEND todo ${libraries})
        endif()
      endforeach()
    endif()
  endwhile()
  set(${out} "${seen}" PARENT_SCOPE)
endfunction()

# pulsebar_links_without(PATTERN regex TARGETS ...): configuring fails when a target reaches such a library.
function(pulsebar_links_without)
  cmake_parse_arguments(arg "" "PATTERN" "TARGETS" ${ARGN})
  foreach(target IN LISTS arg_TARGETS)
    if(TARGET ${target})
      pulsebar_reach(reached ${target})
      list(FILTER reached INCLUDE REGEX "${arg_PATTERN}")
      if(reached)
        message(FATAL_ERROR "${target} must be linked without ${reached}")
      endif()
    endif()
  endforeach()
endfunction()

# The include check sees what a source names; this sees what it is linked to.
pulsebar_links_without(PATTERN "^Qt6::(Gui|Widgets|Svg)|XCB|^xcb"
  TARGETS pulsebar_util pulsebar_platform pulsebar_engine pulsebar_sensors pulsebar_processes pulsebar_menu pulsebarctl)
pulsebar_links_without(PATTERN "^Qt6::" TARGETS pulsebar_linux_low pulsebar_linux_hwmon pulsebar_smc
  pulsebar-top pulsebar-nettop pulsebar-smc)
