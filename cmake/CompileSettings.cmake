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

# What Debian hardens its programs with; its own package builds bring the same flags.
if(KTV_HARDENING AND NOT KTV_SANITIZER)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    include(CheckCXXCompilerFlag)
    target_compile_options(ktv_compile_settings INTERFACE
        -fstack-protector-strong -Wformat -Werror=format-security)
    foreach(flag -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
        string(MAKE_C_IDENTIFIER "KTV_HAS${flag}" known)
        check_cxx_compiler_flag(${flag} ${known}) # some know no such flag, or none on this processor
        if(${known})
            target_compile_options(ktv_compile_settings INTERFACE ${flag})
        endif()
    endforeach()
    # Without optimisation the checks are not made.
    target_compile_definitions(ktv_compile_settings INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:_FORTIFY_SOURCE=2>)
    target_link_options(ktv_compile_settings INTERFACE LINKER:-z,relro LINKER:-z,now
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()

# No binary tells where it was built. Debuggers of the other configurations want to know.
target_compile_options(ktv_compile_settings INTERFACE
    "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>"
    "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")

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
