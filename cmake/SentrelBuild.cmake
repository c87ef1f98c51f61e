# Build settings shared by every folder (DESIGN.md sections 3 and 4).

option(SENTREL_SANITIZE "Build native code with ASan and UBSan" OFF)
option(SENTREL_FUZZ "Build the libFuzzer targets (clang only)" OFF)
option(SENTREL_TESTS "Build the tests" ON)

# The trees compile much of the same code again and again: ccache, where the machine has it,
# makes a second build of an unchanged file cost nothing. Paths are hashed relative to the
# checkout, so a fresh clone elsewhere on the machine reuses what an earlier one compiled.
find_program(SENTREL_CCACHE ccache)
if(SENTREL_CCACHE)
  set(SENTREL_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
      "${SENTREL_CCACHE}")
  set(CMAKE_C_COMPILER_LAUNCHER ${SENTREL_LAUNCHER})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${SENTREL_LAUNCHER})
endif()

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  add_compile_options(-Wall -Wextra -Werror)
endif()

if(WIN32)
  # The host runs Win32 ANSI: 8-bit strings in the ANSI code page, as the host hands them over.
  add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 WINVER=0x0601
                          _WIN32_IE=0x0600)
  # Everything static so the DLL and the programs need nothing beside the system DLLs.
  add_link_options(-static -static-libgcc -static-libstdc++)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # .def files name the exports without their stdcall decoration.
    add_link_options(-Wl,--enable-stdcall-fixup)
  endif()
else()
  if(SENTREL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=address,undefined)
  endif()
endif()

# widl: headers, GUID definitions and a type library from one IDL file.
#   sentrel_widl(<target> <idl> [DEPENDS <idl>...])
# Makes an INTERFACE library <target> that carries the generated folder as include path and
# sets <target>_TLB to the type library's path.
if(WIN32)
  set(SENTREL_WIDL_INCLUDE /usr/include/wine/wine/windows CACHE PATH
      "Folder holding oaidl.idl and msxml2.idl (Debian package libwine-dev)")
  set(SENTREL_STDOLE_DIR /usr/lib/x86_64-linux-gnu/wine/x86_64-windows CACHE PATH
      "Folder holding stdole2.tlb (Debian package wine64)")
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(SENTREL_WIDL_ARCH -m64)
  else()
    set(SENTREL_WIDL_ARCH -m32)
  endif()
endif()

function(sentrel_widl target idl)
  cmake_parse_arguments(W "" "" "DEPENDS" ${ARGN})
  get_filename_component(base "${idl}" NAME_WE)
  set(out "${CMAKE_CURRENT_BINARY_DIR}/idl")
  file(MAKE_DIRECTORY "${out}")
  add_custom_command(
    OUTPUT "${out}/${base}.h" "${out}/${base}_i.c" "${out}/${base}.tlb"
    COMMAND ${SENTREL_WIDL} ${SENTREL_WIDL_ARCH} -I "${SENTREL_WIDL_INCLUDE}"
            -I "${CMAKE_SOURCE_DIR}/host" -L "${SENTREL_STDOLE_DIR}"
            -h -H "${out}/${base}.h" -u -U "${out}/${base}_i.c" -t -T "${out}/${base}.tlb"
            "${idl}"
    DEPENDS "${idl}" ${W_DEPENDS}
    COMMENT "widl ${base}.idl"
    VERBATIM)
  add_custom_target(${target}_gen DEPENDS "${out}/${base}.h" "${out}/${base}_i.c" "${out}/${base}.tlb")
  add_library(${target} STATIC "${out}/${base}_i.c")
  add_dependencies(${target} ${target}_gen)
  target_include_directories(${target} PUBLIC "${out}")
  target_link_libraries(${target} PUBLIC ole32 oleaut32 uuid)
  set(${target}_TLB "${out}/${base}.tlb" PARENT_SCOPE)
endfunction()

# GoogleTest from Debian's sources, for both the native and the mingw builds.
if(SENTREL_TESTS AND NOT TARGET gtest)
  if(WIN32)
    set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
  endif()
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
endif()

if(WIN32)
  # Windows programs run under Wine, in a prefix inside the build tree (DESIGN.md section 4).
  set(SENTREL_WINEPREFIX "${CMAKE_BINARY_DIR}/wineprefix")
  configure_file("${CMAKE_SOURCE_DIR}/cmake/wine-run.sh.in" "${CMAKE_BINARY_DIR}/wine-run" @ONLY
                 FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                  WORLD_READ WORLD_EXECUTE)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_BINARY_DIR}/wine-run" CACHE FILEPATH "" FORCE)
endif()

# sentrel_add_gtest(<name> SOURCES ... LIBS ... [LABELS ...] [RESOURCE_LOCK ...])
# One ctest entry per test program; under Wine through the emulator.
function(sentrel_add_gtest name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS;LABELS;RESOURCE_LOCK;DEPENDS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} gtest_main)
  if(T_DEPENDS)
    add_dependencies(${name} ${T_DEPENDS})
  endif()
  add_test(NAME ${name} COMMAND ${name} --gtest_color=no)
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT})
  if(T_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${T_LABELS}")
  endif()
  if(T_RESOURCE_LOCK)
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK "${T_RESOURCE_LOCK}")
  endif()
endfunction()
