# Installs the build, builds the consumer against the CMake package and with
# pkg-config, and checks what each prints.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/stage")
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(OUT "${out}" PARENT_SCOPE)
endfunction()
# Moscow in UTM (GeographicLib's GeoConvert: 37n 413224.138 6179766.954), then
# the system a scripted user chose in the projection dialog.
function(expect consumer lang zone)
  set(ENV{MAPWRIGHT_UI_LANG} "${lang}")
  run("${consumer}")
  string(FIND "${OUT}" "datum 3: WGS 84\nline: 6179766.95, 413224.14 (${zone}  37 / WGS 84)\n\
dialog 1: Gauss-Kruger on Pulkovo 1942\nsaved: ProjectionIndex=3 DatumIndex=4 scale=1 \
c_lon=39.000000 lat_origin=0.000000 fe=7500000 fn=0\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "unexpected output in ${lang}:\n${OUT}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${WORK_DIR}/build" "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DCMAKE_CXX_FLAGS=${EXTRA_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${EXTRA_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/build")
# Catalogs found beside the installed library, seeded into a fresh data home;
# the dialog saves into a registry of this run alone.
set(ENV{XDG_DATA_HOME} "${WORK_DIR}/data-home")
set(ENV{XDG_CONFIG_HOME} "${WORK_DIR}/config-home")
unset(ENV{MAPWRIGHT_REGISTRY})
unset(ENV{MAPWRIGHT_APPDIR})
expect("${WORK_DIR}/build/consumer" en "UTM, UTM Zone")
expect("${WORK_DIR}/build/consumer" ru "Универсальная поперечная Меркатора, Номер зоны")

file(GLOB pcdirs "${prefix}/lib*/pkgconfig" "${prefix}/lib*/*/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "${pcdirs}")
run(pkg-config --cflags --libs mapwright)
string(STRIP "${OUT}" pkgflags)
separate_arguments(pkgflags UNIX_COMMAND "${pkgflags}")
separate_arguments(extra UNIX_COMMAND "${EXTRA_FLAGS}")
run(c++ -std=c++17 -Wall -Wextra -Werror ${extra} "${SOURCE_DIR}/main.cpp" -o "${WORK_DIR}/consumer-pc" ${pkgflags})
expect("${WORK_DIR}/consumer-pc" en "UTM, UTM Zone")
