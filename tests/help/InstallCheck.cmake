# Installs the build into a scratch prefix, moved away from the prefix it was configured
# for, and checks that everything lands where the desktop looks and that the installed
# program finds its shipped data there (not in the source tree).
#   cmake -DBUILD_DIR=... -DSCRATCH=... -P InstallCheck.cmake
file(REMOVE_RECURSE ${SCRATCH})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${SCRATCH}/staged
                RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${rc}")
endif()
file(RENAME ${SCRATCH}/staged ${SCRATCH}/moved)
set(prefix ${SCRATCH}/moved)
foreach(expected
        bin/morvane
        share/morvane/help/morvane.qhc
        share/morvane/help/morvane.qch
        share/morvane/syntax/C.config
        share/applications/com.brackwyn.Morvane.desktop
        share/mime/packages/morvane.xml
        share/icons/hicolor/scalable/apps/morvane.svg
        share/icons/hicolor/16x16/apps/morvane.png
        share/icons/hicolor/48x48/apps/morvane.png
        share/icons/hicolor/256x256/apps/morvane.png)
    if(NOT EXISTS ${prefix}/${expected})
        message(FATAL_ERROR "not installed: ${expected}")
    endif()
endforeach()
if(EXISTS ${prefix}/share/morvane/help/index.html OR EXISTS ${prefix}/share/morvane/desktop)
    message(FATAL_ERROR "page sources or desktop files were copied into the data folder")
endif()
file(READ ${prefix}/share/applications/com.brackwyn.Morvane.desktop entry)
if(NOT entry MATCHES "\nExec=morvane --reuse %F\n")
    message(FATAL_ERROR "the desktop entry does not start morvane --reuse")
endif()

# A definition only the installed copy has shows that the program read the installed data.
file(COPY_FILE ${prefix}/share/morvane/syntax/C.config ${prefix}/share/morvane/syntax/InstalledOnly.config)
set(home ${SCRATCH}/home)
file(MAKE_DIRECTORY ${home})
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=MORVANE_DATA_DIR --unset=MORVANE_HELP_DIR
            HOME=${home} XDG_CONFIG_HOME=${home}/.config XDG_DATA_HOME=${home}/.local/share
            XDG_CACHE_HOME=${home}/.cache QT_QPA_PLATFORM=offscreen
            ${prefix}/bin/morvane
    TIMEOUT 10 RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
if(NOT EXISTS ${home}/.local/share/Brackwyn/Morvane/syntax/InstalledOnly.config)
    message(FATAL_ERROR "the installed program did not take its definitions from ${prefix}/share/morvane")
endif()
file(REMOVE_RECURSE ${SCRATCH})
