# Installs the build, builds the consumer against its CMake package, checks what it prints.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/stage")
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(OUT "${out}" PARENT_SCOPE)
endfunction()
function(expect consumer lang line)
  set(ENV{MAPWRIGHT_UI_LANG} "${lang}")
  run("${consumer}")
  string(FIND "${OUT}" "datum 3: WGS 84\nline: ${line}\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "expected the line \"${line}\"")
  endif()
endfunction()
run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${WORK_DIR}/build" "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DCMAKE_CXX_FLAGS=${EXTRA_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${EXTRA_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/build")
# Catalogs found beside the installed library, seeded into a fresh data home.
set(ENV{XDG_DATA_HOME} "${WORK_DIR}/data-home")
unset(ENV{MAPWRIGHT_APPDIR})
# Moscow in UTM: GeographicLib's GeoConvert gives 37n 413224.138 6179766.954.
expect("${WORK_DIR}/build/consumer" ru
  "6179766.95, 413224.14 (Универсальная поперечная Меркатора, Номер зоны  37 / WGS 84)")
