# SPDX-License-Identifier: GPL-3.0-or-later
# The programs handle secrets, so they get the hardening a distribution would give them even when
# built by hand: position-independent executables (so ASLR moves the program itself, not only its
# libraries) and full RELRO (relocations resolved at start, the GOT then read-only, so a stray
# write cannot redirect a library call). Debian's default flags add stack protection and
# _FORTIFY_SOURCE on top; scripts/package.sh builds with them.
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
add_link_options(LINKER:-z,relro,-z,now)
