# Sources compiled on their own in a unity build: each defines, in its anonymous namespace,
# a helper whose name another source of the same target also defines (usually a Tr() with
# its own translation context), which a shared batch would see twice. A new clash shows up
# as a "redefinition" error in a unity build: add the file here, or give the helper a name
# of its own.
set(morvane_unity_alone
    src/editor/ZoomCommands.cpp
    src/hex/HexText.cpp
    src/hex/CHexGotoDialog.cpp
    src/search/CReplaceDialog.cpp
    src/usertools/CShortcutsPage.cpp
    tests/explorer/WorkspaceFileTest.cpp
)

foreach(file IN LISTS morvane_unity_alone)
    get_filename_component(dir ${file} DIRECTORY)
    set_source_files_properties(${PROJECT_SOURCE_DIR}/${file} DIRECTORY ${PROJECT_SOURCE_DIR}/${dir}
        PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endforeach()
