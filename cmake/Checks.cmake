# Targets that check the sources: layers, format, lint.
add_custom_target(check-layers
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-layers" WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
add_custom_target(check-format
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-format" WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
add_custom_target(format
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-format" --fix WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
add_custom_target(lint
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/lint" "${CMAKE_BINARY_DIR}" WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
