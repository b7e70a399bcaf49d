# Linking dozens of test programs against the toolkit dominates an incremental build and a
# good part of a cold one; lld (or gold) links them several times faster than the default.
# MORVANE_LINKER names the one to use; "default" keeps the compiler's own choice.
set(MORVANE_LINKER "auto" CACHE STRING "Linker: auto, lld, gold or default")
set_property(CACHE MORVANE_LINKER PROPERTY STRINGS auto lld gold default)

if(NOT MORVANE_LINKER STREQUAL "default" AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    include(CheckLinkerFlag)
    if(MORVANE_LINKER STREQUAL "auto")
        set(candidates lld gold)
    else()
        set(candidates ${MORVANE_LINKER})
    endif()
    foreach(linker IN LISTS candidates)
        check_linker_flag(CXX "-fuse-ld=${linker}" MORVANE_HAVE_LD_${linker})
        if(MORVANE_HAVE_LD_${linker})
            add_link_options("-fuse-ld=${linker}")
            message(STATUS "Linking with ${linker}")
            break()
        endif()
    endforeach()
endif()
