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
    endif()
endfunction()
