# Fuzz target for the serial unit's packet decoder (libFuzzer, so clang only).
#
# The decoder's two sources are compiled here rather than linked from corvida_core: libFuzzer
# needs its coverage instrumentation inside the code it explores, and the library is built
# without it.
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_executable(fuzz_packetdecoder
        ${CMAKE_CURRENT_LIST_DIR}/fuzz_packetdecoder.cpp
        ${PROJECT_SOURCE_DIR}/device/CorvidaPacket.cpp
        ${PROJECT_SOURCE_DIR}/device/CorvidaPacketDecoder.cpp)
    target_include_directories(fuzz_packetdecoder PRIVATE ${PROJECT_SOURCE_DIR})
    target_compile_options(fuzz_packetdecoder PRIVATE
        -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(fuzz_packetdecoder PRIVATE -fsanitize=fuzzer,address,undefined)
    target_link_libraries(fuzz_packetdecoder PRIVATE Qt6::Core)
endif()
