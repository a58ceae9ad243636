# Compiler flags for every target. The floating-point flags are essential: every build must produce the
# same bytes.
add_library(krl_compiler INTERFACE)
target_compile_options(krl_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion $<$<BOOL:${KRL_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # false positive for string concatenation
  -ffp-contract=off -fno-fast-math -fno-math-errno -fno-trapping-math
  # In some releases this pass drops the rounding of a double to single precision and back.
  $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND NOT EMSCRIPTEN)
  target_compile_options(krl_compiler INTERFACE -msse2 -mfpmath=sse)
endif()
if(WIN32)
  target_compile_definitions(krl_compiler INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX)
endif()
if(KRL_SANITIZE)
  target_compile_options(krl_compiler INTERFACE -fsanitize=${KRL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(krl_compiler INTERFACE -fsanitize=${KRL_SANITIZE})
endif()
find_package(Threads REQUIRED)
target_link_libraries(krl_compiler INTERFACE Threads::Threads)

# Reads headers that most files of a target include once for all of them, which halves the time that a build takes.
# krl_precompile(TARGET HEADER...), or krl_precompile(TARGET REUSE_FROM OTHER) for a target with the same options as
# another. Every file still includes what it uses, which builds with a compiler cache show, where this would not work.
function(krl_precompile target)
  if(KRL_PRECOMPILED AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # More false positives for string concatenation, in headers that count as ours when they are precompiled.
    target_compile_options(${target} PRIVATE
      "$<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>")
    if("${ARGV1}" STREQUAL REUSE_FROM)
      target_precompile_headers(${target} ${ARGN})
    else()
      target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
  endif()
endfunction()

# Collects sources by folder, so that a new source file needs no entry anywhere.
function(krl_sources variable)
  set(found "")
  foreach(folder IN LISTS ARGN)
    file(GLOB files CONFIGURE_DEPENDS ${folder}/*.cpp)
    list(APPEND found ${files})
  endforeach()
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

# The same for whole folder trees, such as the families of effects.
function(krl_tree_sources variable)
  set(found "")
  foreach(tree IN LISTS ARGN)
    file(GLOB_RECURSE files CONFIGURE_DEPENDS ${tree}/*.cpp)
    list(APPEND found ${files})
  endforeach()
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

# Of the given sources, those that depend on the vector level (src/core/VectorLevels.h).
function(krl_levelled_sources variable)
  set(found "")
  foreach(source IN LISTS ARGN)
    file(STRINGS ${source} marks REGEX "KRL_(VECTOR_LEVELS|STREAM_LEVELS|ONLY_)" LIMIT_COUNT 1)
    if(marks)
      list(APPEND found ${source})
    endif()
  endforeach()
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

# Adds a program with the engine at one vector level, PLAIN or AVX2, whatever the loader would select: the files
# that have levels are compiled for that one, and replace those of the library.
function(krl_add_level_program name level)
  get_target_property(sources krlengine SOURCES)
  list(FILTER sources EXCLUDE REGEX "TARGET_OBJECTS")
  krl_levelled_sources(levelled ${sources})
  add_executable(${name} ${ARGN} ${levelled})
  target_compile_definitions(${name} PRIVATE KRL_ONLY_${level})
endfunction()
