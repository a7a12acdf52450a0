# What `cmake --install` puts in place besides the library: the programs and what a desktop and a shell know them by.
# They are components of their own: programs, library, development.

include(GNUInstallDirs)

set(desktop_id example.framekeeper.Framekeeper)
set(desktop_files ${PROJECT_SOURCE_DIR}/packaging/desktop)

# The window's program stays in its bundle, where it finds its resources; the command in the path is a link to it.
set(bundle_folder ${CMAKE_INSTALL_LIBDIR}/framekeeper/Framekeeper.app/Contents)
install(TARGETS framekeeper DESTINATION ${bundle_folder}/Linux COMPONENT programs)
install(FILES ${FRAMEKEEPER_BUNDLE}/Info.plist DESTINATION ${bundle_folder} COMPONENT programs)
install(FILES ${FRAMEKEEPER_BUNDLE}/Resources/MainMenu.ui DESTINATION ${bundle_folder}/Resources COMPONENT programs)
cmake_path(RELATIVE_PATH bundle_folder BASE_DIRECTORY ${CMAKE_INSTALL_BINDIR} OUTPUT_VARIABLE bundle_from_bin)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
file(CREATE_LINK ${bundle_from_bin}/Linux/framekeeper ${PROJECT_BINARY_DIR}/links/framekeeper SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/links/framekeeper DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)

install(TARGETS framekeeper-cli DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
set_target_properties(osa PROPERTIES EXCLUDE_FROM_ALL OFF)
install(PROGRAMS $<TARGET_FILE:osa> RENAME framekeeper-osa DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)

install(FILES ${desktop_files}/${desktop_id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT programs)
# The session's bus starts the program by its path, which is known when it is installed.
install(CODE "set(framekeeper_program \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/framekeeper\")
configure_file(\"${desktop_files}/${desktop_id}.service.in\" \"${PROJECT_BINARY_DIR}/${desktop_id}.service\" @ONLY)"
        COMPONENT programs)
install(FILES ${PROJECT_BINARY_DIR}/${desktop_id}.service DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/services
        COMPONENT programs)
configure_file(${desktop_files}/${desktop_id}.metainfo.xml.in ${PROJECT_BINARY_DIR}/${desktop_id}.metainfo.xml @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${desktop_id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
        COMPONENT programs)

# Drawn for each size on its own grid; what is larger is scaled from the largest.
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(size 16 32 48)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/icons/${size}.svg RENAME ${desktop_id}.svg
          DESTINATION ${icons}/${size}x${size}/apps COMPONENT programs)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/packaging/icons/48.svg RENAME ${desktop_id}.svg
        DESTINATION ${icons}/scalable/apps COMPONENT programs)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/icons/symbolic.svg RENAME ${desktop_id}-symbolic.svg
        DESTINATION ${icons}/symbolic/apps COMPONENT programs)

install(DIRECTORY ${FRAMEKEEPER_CATALOGUES} DESTINATION ${CMAKE_INSTALL_DATADIR}/framekeeper COMPONENT programs)

foreach(page framekeeper framekeeper-cli framekeeper-osa)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/${page}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)
endforeach()

set(completions ${PROJECT_SOURCE_DIR}/packaging/completions)
install(FILES ${completions}/framekeeper-cli.bash RENAME framekeeper-cli
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT programs)
install(FILES ${completions}/_framekeeper-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
        COMPONENT programs)
install(FILES ${completions}/framekeeper-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
        COMPONENT programs)

# Where Ansible looks for collections if the prefix is /usr.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/packaging/ansible/
        DESTINATION ${CMAKE_INSTALL_DATADIR}/ansible/collections/ansible_collections/framekeeper/copies
        COMPONENT programs PATTERN LICENSE EXCLUDE PATTERN __pycache__ EXCLUDE)
