# SPDX-License-Identifier: GPL-3.0-or-later
# Warnings for our own targets only: third-party headers come in as SYSTEM includes.
add_library(vorlane_warnings INTERFACE)
target_compile_options(vorlane_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow
                       -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual)
if(VORLANE_WARNINGS_AS_ERRORS)
    target_compile_options(vorlane_warnings INTERFACE -Werror)
endif()

# The core must stay free of Qt so that every rule can be tested and benchmarked without a
# toolkit. Called once the core's link interface is final; fails the configure step otherwise.
function(vorlane_assert_no_qt target)
    get_target_property(libs ${target} LINK_LIBRARIES)
    get_target_property(ilibs ${target} INTERFACE_LINK_LIBRARIES)
    foreach(lib IN LISTS libs ilibs)
        if(lib MATCHES "Qt[0-9]*::|Qt[0-9]*Core|Qt[0-9]*Gui|Qt[0-9]*Widgets")
            message(FATAL_ERROR "${target} must not link Qt, but links ${lib}")
        endif()
    endforeach()
endfunction()
