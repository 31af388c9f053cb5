# One interface target carries the compiler settings that every target of this tree shares.
add_library(ktv_compile_settings INTERFACE)

# The same text on ARM as on x86: no fused multiply-add behind the source's back.
target_compile_options(ktv_compile_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
    -ffp-contract=off
    $<$<BOOL:${KTV_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(ktv_compile_settings INTERFACE
    QT_NO_FOREACH QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050E00
    QT_NO_CAST_TO_ASCII QT_STRICT_ITERATORS)

set(ktv_sanitizer_address -fsanitize=address,undefined -fno-sanitize-recover=undefined)
set(ktv_sanitizer_thread -fsanitize=thread)
# Library and targets tell the fuzzer which paths were taken; its main() is the targets' alone.
set(ktv_sanitizer_fuzzer ${ktv_sanitizer_address} -fsanitize=fuzzer-no-link)
if(KTV_SANITIZER)
    # What the sanitizers weave in makes GCC see uninitialised variables where there are none.
    target_compile_options(ktv_compile_settings INTERFACE
        ${ktv_sanitizer_${KTV_SANITIZER}} -fno-omit-frame-pointer
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(ktv_compile_settings INTERFACE ${ktv_sanitizer_${KTV_SANITIZER}})
endif()
