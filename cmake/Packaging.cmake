# What a Linux machine gets besides the programs (man pages, completions, the
# Debian copyright and changelog), and `make deb`'s package.

# Debian wants man pages and changelogs compressed, reproducibly (-n: no name or time).
function(brenvik_gzip source destination)
  add_custom_command(OUTPUT ${destination}
    COMMAND gzip -9n -c ${source} > ${destination}
    DEPENDS ${source} VERBATIM)
endfunction()

set(gz_dir ${PROJECT_BINARY_DIR}/gz)
file(MAKE_DIRECTORY ${gz_dir})
foreach(page brenvik.1 brenvik-status.1)
  brenvik_gzip(${PROJECT_SOURCE_DIR}/docs/man/${page} ${gz_dir}/${page}.gz)
  list(APPEND gz_files ${gz_dir}/${page}.gz)
  install(FILES ${gz_dir}/${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
brenvik_gzip(${PROJECT_SOURCE_DIR}/data/debian/changelog ${gz_dir}/changelog.Debian.gz)
add_custom_target(brenvik_gzipped ALL DEPENDS ${gz_files} ${gz_dir}/changelog.Debian.gz)

set(completions ${PROJECT_SOURCE_DIR}/data/completions)
foreach(program brenvik brenvik-status)
  install(FILES ${completions}/${program}.bash RENAME ${program}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${completions}/_${program} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(FILES ${completions}/${program}.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/data/debian/copyright ${gz_dir}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/brenvik)
install(FILES ${PROJECT_SOURCE_DIR}/data/debian/lintian-overrides RENAME brenvik
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brenvik)
set(CPACK_PACKAGE_VENDOR "The Brenvik developers")
set(CPACK_PACKAGE_CONTACT "The Brenvik developers <brenvik@users.noreply.github.com>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://github.com/brenvik/brenvik)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so the library scan cannot see them: the X11 and Wayland
# platform plugins, and ps where /proc cannot be read.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, procps")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "tmux, qt6-wayland")
# Debian's style: a short synopsis without a capital or full stop, then paragraphs.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "tray indicator for Codex CLI sessions")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Brenvik shows in the system tray whether the Codex CLI sessions on this
computer are working, waiting for you to approve a command, or idle, and
takes you to the terminal window and tmux pane where one runs.

It recognises sessions in terminals, tmux, editors and adapters such as
codex-acp, follows Codex's own session logs read-only, and falls back to
CPU use where there is no log. A control panel lists every session,
desktop notifications say when one finishes or waits, and the
brenvik-status command gives the same for terminals and status bars.
It opens no network connection.")
include(CPack)
