# mw_add_resources(<target> <script.rc> <module file name> [SYMBOL <name>])
#
# Compiles a resource script with mw_rc (tools/rc) into a C++ source of
# constant tables and adds it to <target>. The tables are the
# MwModuleResources record of <mapwright/resources.h> for <module file name>
# ("Mapwright.dll"), defined as
#     extern const MwModuleResources <name>;
# where <name> is MwResources_ followed by the module's file name without its
# extension ("MwResources_Mapwright") unless SYMBOL gives it. The library
# registers that record itself (MwRegisterModule).
#
# The script is read as UTF-8; the files it includes and reads are tracked
# through a dependency file, so editing resource.h or the manifest rebuilds it.
function(mw_add_resources target script module_name)
  cmake_parse_arguments(RES "" "SYMBOL" "" ${ARGN})
  get_filename_component(script_path "${script}" ABSOLUTE)
  get_filename_component(stem "${script}" NAME_WE)
  if(RES_SYMBOL)
    set(symbol "${RES_SYMBOL}")
  else()
    get_filename_component(module_stem "${module_name}" NAME_WE)
    string(MAKE_C_IDENTIFIER "MwResources_${module_stem}" symbol)
  endif()

  set(out "${CMAKE_CURRENT_BINARY_DIR}/${stem}_rc.cpp")
  add_custom_command(
    OUTPUT "${out}"
    COMMAND mw_rc --module "${module_name}" --symbol "${symbol}"
            -o "${out}" --depfile "${out}.d" "${script_path}"
    DEPENDS mw_rc "${script_path}"
    DEPFILE "${out}.d"
    COMMENT "Compiling resources ${script}"
    VERBATIM)
  # The target may live in another directory than this call (libmapwright is
  # made at the top and gathered from its folders): a custom target here
  # carries the rule, and the generated file is visible everywhere (CMP0118).
  add_custom_target(${target}_${stem}_resources DEPENDS "${out}")
  add_dependencies(${target} ${target}_${stem}_resources)
  target_sources(${target} PRIVATE "${out}")
endfunction()
