# What "cmake --install" puts where. The data folder keeps the shape that data/ has in the source
# tree, so that a program finds its files by the same names in both.
set(kestrel_data_dir ${CMAKE_INSTALL_DATADIR}/kestrel)

function(kestrel_install_common)
  install(TARGETS kestrel-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(TARGETS vpp-guard RUNTIME DESTINATION libexec/kestrel)  # where the programs look
  install(FILES ${PROJECT_SOURCE_DIR}/data/man/kestrel-cli.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${PROJECT_SOURCE_DIR}/data/completion/kestrel-cli.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kestrel-cli)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/schema DESTINATION ${kestrel_data_dir})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/sample
    DESTINATION ${kestrel_data_dir} FILES_MATCHING PATTERN "*.bin")
  # One by one and optional: a source archive may come without some of them.
  foreach(document README.md CHANGELOG.md)
    install(FILES ${PROJECT_SOURCE_DIR}/${document}
      DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
  endforeach()
endfunction()

# Sounds, help, icons and the desktop's files serve the window alone.
function(kestrel_install_window)
  set(data ${PROJECT_SOURCE_DIR}/data)
  install(TARGETS kestrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${data}/sounds DESTINATION ${kestrel_data_dir} FILES_MATCHING PATTERN "*.wav")
  install(DIRECTORY ${data}/icons DESTINATION ${kestrel_data_dir} FILES_MATCHING PATTERN "*.svg")
  install(DIRECTORY ${data}/help DESTINATION ${kestrel_data_dir}
    FILES_MATCHING PATTERN "*.hlp" PATTERN "*.html")
  install(FILES ${data}/man/kestrel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${data}/kestrel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${data}/org.kestrel.Kestrel.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${data}/icons/kestrel.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endfunction()

if(TARGET firmware)
  install(FILES $<TARGET_PROPERTY:firmware,PROGRAM> DESTINATION ${kestrel_data_dir}/link)
endif()
if(TARGET kestrel-cli)
  kestrel_install_common()
endif()
if(TARGET kestrel)
  kestrel_install_window()
endif()
