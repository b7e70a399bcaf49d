find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets PrintSupport Network Concurrent Test)
find_package(pugixml REQUIRED)

# QScintilla ships no CMake package on Debian: find its header and library by hand.
find_path(QSCINTILLA_INCLUDE_DIR Qsci/qsciscintillabase.h
    HINTS ${Qt6Core_INCLUDE_DIRS}/.. /usr/include/x86_64-linux-gnu/qt6 /usr/include/qt6)
find_library(QSCINTILLA_LIBRARY NAMES qscintilla2_qt6 qscintilla2-qt6)
if(NOT QSCINTILLA_INCLUDE_DIR OR NOT QSCINTILLA_LIBRARY)
    message(FATAL_ERROR "QScintilla for Qt 6 not found (Debian: libqscintilla2-qt6-dev)")
endif()
add_library(QScintilla::QScintilla UNKNOWN IMPORTED)
set_target_properties(QScintilla::QScintilla PROPERTIES
    IMPORTED_LOCATION "${QSCINTILLA_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${QSCINTILLA_INCLUDE_DIR}"
    INTERFACE_COMPILE_DEFINITIONS "QSCINTILLA_DLL"
    INTERFACE_LINK_LIBRARIES "Qt6::Widgets;Qt6::PrintSupport")

if(MORVANE_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
if(MORVANE_BUILD_BENCH)
    find_package(benchmark QUIET)
endif()
