# Installs the build tree into a staging prefix, builds the consumer against it
# with CMake's package and with pkg-config, and runs both.
# -D BUILD_DIR=... -D SOURCE_DIR=... -D WORK_DIR=... -D EXTRA_FLAGS=...
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/stage")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${WORK_DIR}/build"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${EXTRA_FLAGS}"
    "-DCMAKE_EXE_LINKER_FLAGS=${EXTRA_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/build")

# The application directory is left to its default, so the shipped catalogs
# are found beside the installed library and seeded into a fresh data home.
set(ENV{XDG_DATA_HOME} "${WORK_DIR}/data-home")
# The dialog saves the chosen system in a registry of this run alone.
set(ENV{XDG_CONFIG_HOME} "${WORK_DIR}/config-home")
unset(ENV{MAPWRIGHT_REGISTRY})
unset(ENV{MAPWRIGHT_APPDIR})

# The converted point's line, exactly, in English and in Russian (the
# consumer prints it as UTF-8). Moscow in UTM: GeographicLib's GeoConvert
# gives 37n 413224.138 6179766.954.
function(check_line output expected)
  string(FIND "${output}" "line: ${expected}\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "expected the line \"${expected}\"")
  endif()
endfunction()

set(ENV{MAPWRIGHT_UI_LANG} "en")
run("${WORK_DIR}/build/consumer")
message("${LAST_OUTPUT}")
if(NOT LAST_OUTPUT MATCHES "datum 3: WGS 84" OR NOT LAST_OUTPUT MATCHES "Krassovsky 1940"
   OR NOT LAST_OUTPUT MATCHES "UTM zone 37: E 413224.1[0-9]+ N 6179766.9[0-9]+")
  message(FATAL_ERROR "unexpected output")
endif()
check_line("${LAST_OUTPUT}" "6179766.95, 413224.14 (UTM, UTM Zone  37 / WGS 84)")
# The scripted user's choice, as the dialog stored it.
set(saved_gk "saved: ProjectionIndex=3 DatumIndex=4 scale=1 c_lon=39.000000 lat_origin=0.000000 fe=7500000 fn=0\n")
function(check_dialog output)
  string(FIND "${output}" "dialog 1: Gauss-Kruger on Pulkovo 1942\n${saved_gk}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the dialog did not save Gauss-Kruger on Pulkovo 1942")
  endif()
endfunction()
check_dialog("${LAST_OUTPUT}")

set(ENV{MAPWRIGHT_UI_LANG} "ru")
run("${WORK_DIR}/build/consumer")
message("${LAST_OUTPUT}")
check_line("${LAST_OUTPUT}"
  "6179766.95, 413224.14 (Универсальная поперечная Меркатора, Номер зоны  37 / WGS 84)")
check_dialog("${LAST_OUTPUT}")
set(ENV{MAPWRIGHT_UI_LANG} "en")

file(GLOB pcdirs "${prefix}/lib*/pkgconfig" "${prefix}/lib*/*/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "${pcdirs}")
run(pkg-config --cflags --libs mapwright)
string(STRIP "${LAST_OUTPUT}" pkgflags)
separate_arguments(pkgflags UNIX_COMMAND "${pkgflags}")
separate_arguments(extra UNIX_COMMAND "${EXTRA_FLAGS}")
run(c++ -std=c++17 -Wall -Wextra -Werror ${extra} "${SOURCE_DIR}/main.cpp" -o "${WORK_DIR}/consumer-pc" ${pkgflags})
run("${WORK_DIR}/consumer-pc")
check_line("${LAST_OUTPUT}" "6179766.95, 413224.14 (UTM, UTM Zone  37 / WGS 84)")
