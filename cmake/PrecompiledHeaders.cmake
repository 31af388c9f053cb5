# ktv_precompile(TARGET HEADER...): compiles the headers once for all sources of the target
function(ktv_precompile target)
    if(KTV_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# ktv_precompiled_as(TARGET OTHER): uses what was precompiled for the other target
function(ktv_precompiled_as target other)
    if(KTV_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} REUSE_FROM ${other})
        # A test's moc output is included by its source; to read the headers for it takes longer.
        set_source_files_properties(
            ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp
            PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    endif()
endfunction()
