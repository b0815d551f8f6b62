# SPDX-License-Identifier: GPL-3.0-or-later
# Installs BUILD_DIR into STAGE_DIR (as DESTDIR) and fails unless the install holds exactly the
# files of the package, each as the desktop, systemd and PAM will read it, and the programs are
# hardened. The application id and the directories come from BUILD_DIR/InstallNames.cmake.
include(${BUILD_DIR}/InstallNames.cmake)

file(REMOVE_RECURSE "${STAGE_DIR}")
execute_process(COMMAND ${CMAKE_COMMAND} -E env DESTDIR=${STAGE_DIR}
                        ${CMAKE_COMMAND} --install ${BUILD_DIR}
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "cmake --install failed:\n${output}")
endif()

# Exactly these files: a missing one breaks the desktop integration, an extra one (a test
# helper, a library) would end up in the Debian package.
set(desktop_entry "${DATADIR}/applications/${APP_ID}.desktop")
set(metainfo "${DATADIR}/metainfo/${APP_ID}.metainfo.xml")
set(png_icon "${DATADIR}/icons/hicolor/128x128/apps/${APP_ID}.png")
set(service "${UNIT_DIR}/vorlane-reminders.service")
set(timer "${UNIT_DIR}/vorlane-reminders.timer")
set(docs "${DATADIR}/doc/vorlane")
set(bash_completion "${DATADIR}/bash-completion/completions/vorlane-cli")
set(expected "${BINDIR}/vorlane" "${BINDIR}/vorlane-cli" "${desktop_entry}" "${metainfo}"
             "${DATADIR}/icons/hicolor/scalable/apps/${APP_ID}.svg" "${png_icon}"
             "${service}" "${timer}" "${PAM_DIR}/vorlane"
             "${MANDIR}/man1/vorlane.1.gz" "${MANDIR}/man1/vorlane-cli.1.gz"
             "${docs}/copyright" "${docs}/changelog.gz"
             "${bash_completion}" "${DATADIR}/zsh/vendor-completions/_vorlane-cli")
file(GLOB_RECURSE staged LIST_DIRECTORIES false "${STAGE_DIR}/*")
string(LENGTH "${STAGE_DIR}" stage_length)
set(installed "")
foreach(path IN LISTS staged)
    string(SUBSTRING "${path}" ${stage_length} -1 path)
    list(APPEND installed "${path}")
endforeach()
set(missing ${expected})
list(REMOVE_ITEM missing ${installed})
set(extra ${installed})
list(REMOVE_ITEM extra ${expected})
if(missing)
    message(FATAL_ERROR "not installed: ${missing}")
endif()
if(extra)
    message(FATAL_ERROR "installed but not part of the package: ${extra}")
endif()

function(read_staged path out)
    file(READ "${STAGE_DIR}${path}" text)
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

# Fails with WHAT unless TEXT matches REGEX; the first group is left in `match`.
function(expect_match text regex what)
    if(NOT text MATCHES "${regex}")
        message(FATAL_ERROR "${what}")
    endif()
    set(match "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

# The validators the desktop's and software centres' own tooling applies.
foreach(check "desktop-file-validate;${desktop_entry}"
              "appstreamcli;validate;--no-net;${metainfo}")
    list(GET check -1 path)
    list(POP_BACK check)
    execute_process(COMMAND ${check} "${STAGE_DIR}${path}"
                    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${check} rejects ${path}:\n${output}")
    endif()
endforeach()

# The desktop finds the icon, the program and the running window by these names.
read_staged("${desktop_entry}" entry)
expect_match("${entry}" "\nIcon=${APP_ID}\n" "the desktop entry's Icon= is not ${APP_ID}")
expect_match("${entry}" "\nExec=([^ \n]+)" "the desktop entry has no Exec=")
list(FIND installed "${BINDIR}/${match}" found)
if(found EQUAL -1)
    message(FATAL_ERROR "the desktop entry starts ${match}, which is not installed")
endif()
read_staged("${metainfo}" component)
expect_match("${component}" "<id>${APP_ID}</id>" "the AppStream id is not ${APP_ID}")
expect_match("${component}" "<launchable type=\"desktop-id\">${APP_ID}.desktop</launchable>"
             "the AppStream component does not launch ${APP_ID}.desktop")
expect_match("${component}" "<release version=\"([^\"]+)\"" "the AppStream file has no release")
if(NOT match STREQUAL VERSION)
    message(FATAL_ERROR "the newest AppStream release is ${match}, the program ${VERSION}")
endif()
expect_match("${component}" "<project_license>GPL-3.0-or-later</project_license>"
             "the AppStream file does not give the program's licence")

# The changelog in the format dpkg and apt-listchanges read, its newest entry this version.
execute_process(COMMAND gzip -dc "${STAGE_DIR}${docs}/changelog.gz"
                OUTPUT_FILE "${STAGE_DIR}/changelog" RESULT_VARIABLE result ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${docs}/changelog.gz is not gzip: ${output}")
endif()
execute_process(COMMAND dpkg-parsechangelog -l "${STAGE_DIR}/changelog" --show-field Version
                RESULT_VARIABLE result OUTPUT_VARIABLE newest ERROR_VARIABLE output
                OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT result EQUAL 0 OR output MATCHES "warning")
    message(FATAL_ERROR "dpkg-parsechangelog rejects ${docs}/changelog.gz:\n${output}")
endif()
if(NOT newest STREQUAL VERSION)
    message(FATAL_ERROR "the newest changelog entry is ${newest}, the program ${VERSION}")
endif()

# The manual pages render without a complaint from groff (as lintian and man itself run it), and
# besides what help2man takes from --help they carry the hand-kept environment, files and exit
# status.
foreach(program vorlane vorlane-cli)
    set(page "${MANDIR}/man1/${program}.1.gz")
    execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 MANWIDTH=80
                            man --warnings -E UTF-8 -l -Tutf8 "${STAGE_DIR}${page}"
                    RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE output)
    if(NOT result EQUAL 0 OR NOT output STREQUAL "")
        message(FATAL_ERROR "man cannot render ${page} cleanly:\n${output}")
    endif()
    execute_process(COMMAND gzip -dc "${STAGE_DIR}${page}" OUTPUT_VARIABLE source)
    foreach(heading "NAME" "SYNOPSIS" "OPTIONS" "ENVIRONMENT" "FILES" "\"EXIT STATUS\"")
        expect_match("${source}" "\n\\.SH ${heading}\n"
                     "the manual page of ${program} has no ${heading} section")
    endforeach()
    expect_match("${source}" "VORLANE_DATA_DIR" "${page} does not explain VORLANE_DATA_DIR")
endforeach()

file(READ "${STAGE_DIR}${png_icon}" header LIMIT 24 HEX)
if(NOT header MATCHES "^89504e470d0a1a0a0000000d494844520000008000000080$")
    message(FATAL_ERROR "${png_icon} is not a 128 × 128 PNG (header ${header})")
endif()

# systemd does not search PATH: the timer's service must name the installed program.
read_staged("${service}" unit)
expect_match("${unit}" "\nExecStart=${BINDIR}/vorlane --deliver-due-notifications\n"
             "${service} does not run ${BINDIR}/vorlane --deliver-due-notifications")
read_staged("${timer}" unit)
expect_match("${unit}" "\nPersistent=true\n"
             "${timer} would drop the runs missed while the machine was off")

read_staged("${PAM_DIR}/vorlane" installed_pam)
file(READ "${PAM_SOURCE}" source_pam)
if(NOT installed_pam STREQUAL source_pam)
    message(FATAL_ERROR "${PAM_DIR}/vorlane differs from the packaged PAM service")
endif()
foreach(stack "@include common-auth" "@include common-account")
    string(FIND "${installed_pam}" "${stack}" found)
    if(found EQUAL -1)
        message(FATAL_ERROR "the PAM service lacks \"${stack}\"")
    endif()
endforeach()

# Position-independent (ASLR moves the program too) with full RELRO (the GOT is read-only once
# the program has started).
foreach(program vorlane vorlane-cli)
    execute_process(COMMAND readelf --file-header --dynamic --program-headers
                            "${STAGE_DIR}${BINDIR}/${program}"
                    RESULT_VARIABLE result OUTPUT_VARIABLE elf ERROR_VARIABLE elf)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "readelf cannot read ${program}:\n${elf}")
    endif()
    expect_match("${elf}" "Type: +DYN" "${program} is not a position-independent executable")
    expect_match("${elf}" "GNU_RELRO" "${program} has no RELRO segment")
    expect_match("${elf}" "\\(FLAGS\\) +BIND_NOW|\\(FLAGS_1\\) +Flags: NOW"
                 "${program} resolves its symbols lazily: RELRO is only partial")
endforeach()

file(REMOVE_RECURSE "${STAGE_DIR}")
message(STATUS "installed and checked under ${STAGE_DIR}")
