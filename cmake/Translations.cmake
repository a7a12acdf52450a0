# The catalogues of translated texts: translations/framekeeper_LANGUAGE.ts, compiled for the programs of the build tree, which
# find them as installed ones do: in share/framekeeper/translations of a folder above them.

set(FRAMEKEEPER_CATALOGUES ${PROJECT_BINARY_DIR}/share/framekeeper/translations)

# framekeeper_catalogues(TARGET FOLDER SOURCE...): compiles the sources into files of their names in the folder.
function(framekeeper_catalogues TARGET FOLDER)
  set(compiled)
  file(MAKE_DIRECTORY ${FOLDER})
  foreach(source IN LISTS ARGN)
    cmake_path(GET source STEM name)
    add_custom_command(
      OUTPUT ${FOLDER}/${name}.qm
      COMMAND Qt6::lrelease -silent ${source} -qm ${FOLDER}/${name}.qm
      DEPENDS ${source}
      VERBATIM)
    list(APPEND compiled ${FOLDER}/${name}.qm)
  endforeach()
  add_custom_target(${TARGET} ALL DEPENDS ${compiled})
endfunction()

file(GLOB catalogue_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/translations/framekeeper_*.ts)
framekeeper_catalogues(framekeeper_translations ${FRAMEKEEPER_CATALOGUES} ${catalogue_sources})
