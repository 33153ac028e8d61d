# What makes a fault in the program harder to exploit, as Debian builds its own packages. A flag is
# used where the compiler and the linker know it. The flags of CXXFLAGS and LDFLAGS, which a packager
# may set, come after these on the command line, so they win.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

set(hardening "")
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection
        -mbranch-protection=standard -Wformat -Werror=format-security)
    string(MAKE_C_IDENTIFIER "HAVE${flag}" known)
    # clang only warns of a flag that has no effect on this processor.
    set(CMAKE_REQUIRED_FLAGS "-Wformat -Werror")
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
        string(APPEND hardening "${flag} ")
    endif()
endforeach()

# Checks of the sizes of buffers in calls of the C library: level 3 where compiler and library have
# it. Some compilers define a level by default, hence -U.
if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
    set(CMAKE_REQUIRED_FLAGS "-O2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
    check_cxx_source_compiles("#include <cstdio>\nint main() {}" HAVE_FORTIFY_SOURCE_3)
    if(HAVE_FORTIFY_SOURCE_3)
        string(APPEND hardening "-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 ")
    else()
        string(APPEND hardening "-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 ")
    endif()
endif()
unset(CMAKE_REQUIRED_FLAGS)

# The standard library's cheap checks, such as the bounds of operator[].
string(APPEND hardening "-D_GLIBCXX_ASSERTIONS ")
string(PREPEND CMAKE_CXX_FLAGS "${hardening}")

# The table of addresses of library functions is filled at the start and is read-only from then on.
foreach(flag -Wl,-z,relro -Wl,-z,now)
    string(MAKE_C_IDENTIFIER "HAVE${flag}" known)
    check_linker_flag(CXX ${flag} ${known})
    if(${known})
        string(PREPEND CMAKE_EXE_LINKER_FLAGS "${flag} ")
    endif()
endforeach()
