# SPDX-License-Identifier: GPL-3.0-or-later
#
# CHANGELOG.md is the one list of releases. From it the build makes the Debian changelog (which
# dpkg, apt-listchanges and lintian read in their own format) and the <releases> of the AppStream
# file, so that neither is a second copy to keep in step by hand.
#
# vorlane_read_changelog(<CHANGELOG.md> <maintainer> <newest version expected>)
# sets, in the caller's scope:
#   VORLANE_DEBIAN_CHANGELOG    the whole Debian changelog, newest release first
#   VORLANE_APPSTREAM_RELEASES  the <release> elements, newest first, indented for <releases>
# and stops the configuration with the line at fault when the file does not parse, or when its
# newest release is not the version being built.

# "Sun, 22 Nov 2026 00:00:00 +0000" for 2026-11-22: Debian changelog trailers carry the day of the
# week, which lintian checks against the date (Sakamoto's method).
function(_vorlane_rfc2822_date iso_date out)
    string(REGEX MATCH "^([0-9][0-9][0-9][0-9])-([0-9][0-9])-([0-9][0-9])$" ignored "${iso_date}")
    math(EXPR year "${CMAKE_MATCH_1}")
    math(EXPR month "${CMAKE_MATCH_2}")
    math(EXPR day "${CMAKE_MATCH_3}")
    set(month_offsets 0 3 2 5 0 3 5 1 4 6 2 4)
    set(month_names Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
    set(day_names Sun Mon Tue Wed Thu Fri Sat)
    math(EXPR index "${month} - 1")
    list(GET month_offsets ${index} offset)
    list(GET month_names ${index} month_name)
    set(y ${year})
    if(month LESS 3)
        math(EXPR y "${y} - 1")
    endif()
    math(EXPR weekday "(${y} + ${y} / 4 - ${y} / 100 + ${y} / 400 + ${offset} + ${day}) % 7")
    list(GET day_names ${weekday} day_name)
    set(${out} "${day_name}, ${CMAKE_MATCH_3} ${month_name} ${year} 00:00:00 +0000" PARENT_SCOPE)
endfunction()

function(_vorlane_xml_escape text out)
    string(REPLACE "&" "&amp;" text "${text}")
    string(REPLACE "<" "&lt;" text "${text}")
    string(REPLACE ">" "&gt;" text "${text}")
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

function(vorlane_read_changelog path maintainer expected_version)
    file(READ "${path}" text)
    # Split into lines as a CMake list: semicolons and brackets in the text would split or join
    # list elements, so they travel as placeholders and come back when written out.
    string(REPLACE ";" "{vorlane-semicolon}" text "${text}")
    string(REPLACE "[" "{vorlane-open}" text "${text}")
    string(REPLACE "]" "{vorlane-close}" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")

    set(debian "")
    set(releases "")
    set(version "")
    set(items "")         # the current release's items, one list element each
    set(item "")          # the item being read, its lines joined by "\n"
    set(line_number 0)
    # One extra heading at the end flushes the last release.
    foreach(line IN LISTS lines ITEMS "## end")
        math(EXPR line_number "${line_number} + 1")
        if(line MATCHES "^## ")
            if(NOT item STREQUAL "")
                list(APPEND items "${item}")
                set(item "")
            endif()
            if(NOT version STREQUAL "")
                list(LENGTH items count)
                if(count EQUAL 0)
                    message(FATAL_ERROR "${path}: release ${version} lists no changes")
                endif()
                _vorlane_rfc2822_date("${date}" stamp)
                string(APPEND debian "vorlane (${version}) unstable; urgency=medium\n\n")
                string(APPEND releases "    <release version=\"${version}\" date=\"${date}\">\n"
                                       "      <description>\n        <ul>\n")
                foreach(entry IN LISTS items)
                    string(REPLACE "\n" "\n    " continued "${entry}")
                    string(APPEND debian "  * ${continued}\n")
                    string(REPLACE "\n" " " joined "${entry}")
                    _vorlane_xml_escape("${joined}" joined)
                    string(APPEND releases "          <li>${joined}</li>\n")
                endforeach()
                string(APPEND debian "\n -- ${maintainer}  ${stamp}\n\n")
                string(APPEND releases "        </ul>\n      </description>\n    </release>\n")
                set(items "")
            endif()
            if(line STREQUAL "## end")
                break()
            endif()
            set(iso_date "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]")
            if(NOT line MATCHES "^## ([0-9][0-9.]*) \\((${iso_date})\\)$")
                message(FATAL_ERROR "${path}:${line_number}: a release heading is "
                                    "\"## VERSION (YYYY-MM-DD)\", not \"${line}\"")
            endif()
            if(version STREQUAL "" AND NOT CMAKE_MATCH_1 STREQUAL expected_version)
                message(FATAL_ERROR "${path}: the newest release is ${CMAKE_MATCH_1} but the "
                                    "program's version is ${expected_version}: add its release")
            endif()
            set(version "${CMAKE_MATCH_1}")
            set(date "${CMAKE_MATCH_2}")
        elseif(version STREQUAL "")
            # The introduction above the first release is for the reader of the file only.
        elseif(line MATCHES "^- (.+)$")
            if(NOT item STREQUAL "")
                list(APPEND items "${item}")
            endif()
            set(item "${CMAKE_MATCH_1}")
        elseif(line MATCHES "^  ([^ ].*)$" AND NOT item STREQUAL "")
            string(APPEND item "\n${CMAKE_MATCH_1}")
        elseif(line STREQUAL "")
            if(NOT item STREQUAL "")
                list(APPEND items "${item}")
                set(item "")
            endif()
        else()
            message(FATAL_ERROR "${path}:${line_number}: expected an item (\"- \") or its "
                                "continuation (two spaces), not \"${line}\"")
        endif()
        string(LENGTH "${line}" length)
        if(NOT version STREQUAL "" AND length GREATER 78)
            message(FATAL_ERROR "${path}:${line_number}: longer than 78 characters; the Debian "
                                "changelog indents it by two more and allows 80")
        endif()
    endforeach()
    if(debian STREQUAL "")
        message(FATAL_ERROR "${path} holds no release")
    endif()

    string(STRIP "${debian}" debian)
    foreach(variable debian releases)
        string(REPLACE "{vorlane-semicolon}" ";" ${variable} "${${variable}}")
        string(REPLACE "{vorlane-open}" "[" ${variable} "${${variable}}")
        string(REPLACE "{vorlane-close}" "]" ${variable} "${${variable}}")
    endforeach()
    set(VORLANE_DEBIAN_CHANGELOG "${debian}\n" PARENT_SCOPE)
    set(VORLANE_APPSTREAM_RELEASES "${releases}" PARENT_SCOPE)
endfunction()
