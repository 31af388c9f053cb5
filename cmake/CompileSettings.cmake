# One interface target carries the compiler settings that every target of this tree shares.
add_library(ktv_compile_settings INTERFACE)

# Without fused multiply-add, which a compiler may use on its own, so that values have the same text
# on ARM and on x86.
target_compile_options(ktv_compile_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
    -ffp-contract=off
    $<$<BOOL:${KTV_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(ktv_compile_settings INTERFACE
    QT_NO_FOREACH QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050E00
    QT_NO_CAST_TO_ASCII QT_STRICT_ITERATORS)

# The options with which Debian hardens its packages; builds of Debian packages set them by
# themselves.
if(KTV_HARDENING AND NOT KTV_SANITIZER)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    include(CheckCXXCompilerFlag)
    target_compile_options(ktv_compile_settings INTERFACE
        -fstack-protector-strong -Wformat -Werror=format-security)
    foreach(flag -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
        string(MAKE_C_IDENTIFIER "KTV_HAS${flag}" known)
        check_cxx_compiler_flag(${flag} ${known}) # depends on compiler and processor
        if(${known})
            target_compile_options(ktv_compile_settings INTERFACE ${flag})
        endif()
    endforeach()
    # These checks need optimisation.
    target_compile_definitions(ktv_compile_settings INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:_FORTIFY_SOURCE=2>)
    target_link_options(ktv_compile_settings INTERFACE LINKER:-z,relro LINKER:-z,now
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()

# A release binary does not contain the path where it was built. In other configurations debuggers
# need it.
target_compile_options(ktv_compile_settings INTERFACE
    "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>"
    "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")

set(ktv_sanitizer_address -fsanitize=address,undefined -fno-sanitize-recover=undefined)
set(ktv_sanitizer_thread -fsanitize=thread)
# Library and targets report to the fuzzer which paths were taken. Only the targets are linked with
# the fuzzer's main().
set(ktv_sanitizer_fuzzer ${ktv_sanitizer_address} -fsanitize=fuzzer-no-link)
if(KTV_SANITIZER)
    # The sanitizers' instrumentation makes GCC warn about uninitialised variables without reason.
    target_compile_options(ktv_compile_settings INTERFACE
        ${ktv_sanitizer_${KTV_SANITIZER}} -fno-omit-frame-pointer
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(ktv_compile_settings INTERFACE ${ktv_sanitizer_${KTV_SANITIZER}})
endif()
