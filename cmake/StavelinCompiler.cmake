# How every target is compiled: the language, the warnings, the sanitizers, where programs land.
set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(STAVELIN_CCACHE ccache)
if(STAVELIN_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${STAVELIN_CCACHE})
endif()

add_library(stavelin_options INTERFACE)
target_compile_options(stavelin_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wunused -Wnull-dereference -Wimplicit-fallthrough -Werror
    -fstack-protector-strong)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports these on correct code of its own library (std::expected, std::variant, coroutines).
    target_compile_options(stavelin_options INTERFACE
        -Wno-maybe-uninitialized -Wno-null-dereference -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()
target_compile_definitions(stavelin_options INTERFACE
    $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>
    $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
# QT_NO_KEYWORDS: the `slots` macro breaks members of that name.
target_compile_definitions(stavelin_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
if(STAVELIN_SANITIZE)
    target_compile_options(stavelin_options INTERFACE
        -fsanitize=${STAVELIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(stavelin_options INTERFACE -fsanitize=${STAVELIN_SANITIZE})
    if(STAVELIN_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Asio uses fences, of which the sanitizer knows nothing; it synchronizes by other means too.
        target_compile_options(stavelin_options INTERFACE -Wno-tsan)
    endif()
endif()
