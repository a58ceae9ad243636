# WebAssembly by Debian's Emscripten, whose linker needs Debian's modules of Node.
set(KRL_EMSCRIPTEN /usr/share/emscripten CACHE PATH "Where Emscripten is installed")
include(${KRL_EMSCRIPTEN}/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
