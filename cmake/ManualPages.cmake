# Manual pages are installed packed, as Debian's manual has it.

# vorlanepic_install_page(NAME.SECTION COMPONENT): a page of docs/man.
function(vorlanepic_install_page page component)
  set(source ${PROJECT_SOURCE_DIR}/docs/man/${page})
  set(packed ${PROJECT_BINARY_DIR}/man/${page}.gz)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/man)
  add_custom_command(OUTPUT ${packed}
    COMMAND gzip -9nc ${source} > ${packed}
    DEPENDS ${source} VERBATIM)
  add_custom_target(page_${page} ALL DEPENDS ${packed})
  get_filename_component(section ${page} LAST_EXT)
  string(SUBSTRING ${section} 1 -1 section)
  install(FILES ${packed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
endfunction()
