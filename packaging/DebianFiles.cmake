# What each package has besides the files of its component: changelog, copyright, compressed manual pages, documentation.
find_program(KLV_GZIP gzip REQUIRED)

# Adds FILE to the installation of COMPONENT as FOLDER/NAME.gz. Without a time in it the same file gives the same bytes.
function(klv_install_compressed FILE FOLDER NAME COMPONENT)
  set(packed ${CMAKE_CURRENT_BINARY_DIR}/${COMPONENT}/${NAME}.gz)
  file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${COMPONENT})
  execute_process(COMMAND ${KLV_GZIP} -9nc ${FILE} OUTPUT_FILE ${packed} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${FILE})
  install(FILES ${packed} DESTINATION ${FOLDER} COMPONENT ${COMPONENT})
endfunction()

foreach(pair library:libkelvarinlivescannervt40-1 development:libkelvarinlivescannervt40-dev tools:kelvarin-vt40-tools
             simulator:kelvarin-vt40-simulator recorder:kelvarin-vt40-recorder python:python3-kelvarin-vt40)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 component)
  list(GET pair 1 package)
  set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})
  klv_install_compressed(${CMAKE_CURRENT_SOURCE_DIR}/changelog ${doc_dir} changelog ${component})
  install(FILES copyright DESTINATION ${doc_dir} COMPONENT ${component})
endforeach()

set(pages ${CMAKE_SOURCE_DIR}/tools/vt40)
klv_install_compressed(${pages}/vt40.1 ${CMAKE_INSTALL_MANDIR}/man1 vt40.1 tools)
klv_install_compressed(${pages}/vt40-scene.5 ${CMAKE_INSTALL_MANDIR}/man5 vt40-scene.5 simulator)
klv_install_compressed(${pages}/KelvarinLiveScannerVT40.3 ${CMAKE_INSTALL_MANDIR}/man3 KelvarinLiveScannerVT40.3 development)

set(docs ${CMAKE_SOURCE_DIR}/docs)
set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc)
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${docs}/reference.md ${docs}/roll-verdicts.md
  DESTINATION ${doc_dir}/libkelvarinlivescannervt40-dev COMPONENT development)
install(FILES ${docs}/schema/vt40.schema.json DESTINATION ${doc_dir}/kelvarin-vt40-tools/schema COMPONENT tools)
install(FILES ${docs}/python.md DESTINATION ${doc_dir}/python3-kelvarin-vt40 COMPONENT python)
install(FILES ${docs}/openapi.yaml ${docs}/service.md ${docs}/live.md ${docs}/live.png
  DESTINATION ${doc_dir}/kelvarin-vt40-tools COMPONENT tools)
install(FILES ${docs}/recordings.md DESTINATION ${doc_dir}/kelvarin-vt40-recorder COMPONENT recorder)
install(FILES ${docs}/simulator.md DESTINATION ${doc_dir}/kelvarin-vt40-simulator COMPONENT simulator)
