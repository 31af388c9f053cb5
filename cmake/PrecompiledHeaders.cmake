# ktv_precompile(TARGET HEADER...): precompiles the headers for all sources of the target
function(ktv_precompile target)
    if(KTV_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# ktv_precompiled_as(TARGET OTHER): uses the headers that were precompiled for the other target
function(ktv_precompiled_as target other)
    if(KTV_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} REUSE_FROM ${other})
        # The output of moc is included in the test's source, so this file is nearly empty; loading
        # the precompiled headers would take longer than compiling it.
        set_source_files_properties(
            ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp
            PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    endif()
endfunction()
