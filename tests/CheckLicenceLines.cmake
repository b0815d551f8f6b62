# SPDX-License-Identifier: GPL-3.0-or-later
# Fails when a source or build file under SOURCE_DIR's src, tests, bench, fuzz, cmake or scripts
# does not name its licence in an SPDX line among its first three lines: a file copied in from
# elsewhere, or written without one, must not slip into the package unlabelled.
set(sources "")
foreach(folder src tests bench fuzz cmake scripts)
    file(GLOB_RECURSE found "${SOURCE_DIR}/${folder}/*.h" "${SOURCE_DIR}/${folder}/*.cpp"
         "${SOURCE_DIR}/${folder}/*.cmake" "${SOURCE_DIR}/${folder}/*.sh"
         "${SOURCE_DIR}/${folder}/CMakeLists.txt")
    list(APPEND sources ${found})
endforeach()
list(APPEND sources "${SOURCE_DIR}/CMakeLists.txt")
set(unlabelled "")
foreach(source IN LISTS sources)
    file(STRINGS "${source}" head LIMIT_COUNT 3)
    if(NOT head MATCHES "SPDX-License-Identifier: GPL-3.0-or-later")
        list(APPEND unlabelled "${source}")
    endif()
endforeach()
if(unlabelled)
    list(JOIN unlabelled "\n" text)
    message(FATAL_ERROR "No SPDX licence line among the first three lines of:\n${text}")
endif()
list(LENGTH sources count)
message(STATUS "${count} files checked, each names its licence")
