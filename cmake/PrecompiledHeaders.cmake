# Most of the compiler's time goes into Qt's headers. Those that many sources include are compiled
# once for each kind of target, and not once for each source: for plugins that hide their symbols, for
# plugins that export them, and for all else.
#
# A source still includes what it uses: the debug build, that under the sanitizers, and the one for the
# real IDE have no precompiled headers.
set(PRECOMPILED_HEADERS
    <QAction> <QApplication> <QCheckBox> <QComboBox> <QDialog> <QDir> <QFileInfo> <QHash> <QLabel>
    <QLineEdit> <QMap> <QMessageBox> <QPointer> <QProcess> <QPushButton> <QRegularExpression>
    <QSettings> <QTimer> <QVBoxLayout> <functional> <memory>)

# Programs and libraries alike, so that they can share the headers.
add_compile_options(-fPIC)

# use_precompiled_headers(<target>...): the targets link Qt6::Widgets. The compiler refuses headers
# that were precompiled with other options or definitions than the target's.
function(use_precompiled_headers)
    foreach(target IN LISTS ARGN)
        get_target_property(visibility ${target} CXX_VISIBILITY_PRESET)
        if(NOT visibility)
            set(visibility unset)
        endif()
        set(owner precompiled_${visibility})
        if(NOT TARGET ${owner})
            _precompile_headers_as_for(${target} ${owner})
        endif()
        target_precompile_headers(${target} REUSE_FROM ${owner})
    endforeach()
endfunction()

function(_precompile_headers_as_for target owner)
    file(CONFIGURE OUTPUT precompiled.cpp CONTENT "")
    add_library(${owner} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
    target_link_libraries(${owner} PRIVATE Qt6::Widgets)
    target_precompile_headers(${owner} PRIVATE ${PRECOMPILED_HEADERS})
    set_target_properties(${owner} PROPERTIES AUTOMOC OFF)
    get_target_property(visibility ${target} CXX_VISIBILITY_PRESET)
    if(visibility)
        get_target_property(inlines_hidden ${target} VISIBILITY_INLINES_HIDDEN)
        get_target_property(definitions ${target} COMPILE_DEFINITIONS)
        list(FILTER definitions INCLUDE REGEX "^QT_")
        target_compile_definitions(${owner} PRIVATE ${definitions})
        set_target_properties(${owner} PROPERTIES
            CXX_VISIBILITY_PRESET ${visibility} VISIBILITY_INLINES_HIDDEN ${inlines_hidden})
    endif()
endfunction()
