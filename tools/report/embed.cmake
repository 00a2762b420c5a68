# Writes the definitions of embedded.h.
# TEMPLATE, STYLES (a list, joined in its order), SCRIPTS (likewise, inside of one strict function), CHARTS (may be empty),
# OUT.
set(source "#include \"report/embedded.h\"\n\nnamespace nvx::tool {\nnamespace {\n\n")
set(definitions "")

function(embed name file)
  set(bytes "0x00")
  set(hash "")
  set(size 0)
  if(file)
    file(READ "${file}" hex HEX)
    string(REGEX REPLACE "(..)" "0x\\1," bytes "${hex}")
    string(LENGTH "${hex}" size)
    math(EXPR size "${size} / 2")
    file(SHA256 "${file}" hash)
  endif()
  string(APPEND source "constexpr unsigned char k${name}Bytes[] = {${bytes}};\n")
  string(APPEND definitions "const Embedded k${name}{{reinterpret_cast<const char*>(k${name}Bytes), ${size}}, \"${hash}\"};\n")
  set(source "${source}" PARENT_SCOPE)
  set(definitions "${definitions}" PARENT_SCOPE)
endfunction()

# The modules share the scope of one function: nothing of the page is global.
set(joined "${OUT}.js")
file(WRITE "${joined}" "'use strict';\n(() => {\n")
foreach(script IN LISTS SCRIPTS)
  file(READ "${script}" text)
  file(APPEND "${joined}" "${text}")
endforeach()
file(APPEND "${joined}" "})();\n")

set(styles "${OUT}.css")
file(WRITE "${styles}" "")
foreach(style IN LISTS STYLES)
  file(READ "${style}" text)
  file(APPEND "${styles}" "${text}")
endforeach()

embed(PageTemplate "${TEMPLATE}")
embed(PageStyle "${styles}")
embed(PageScript "${joined}")
embed(ChartLibrary "${CHARTS}")
file(WRITE "${OUT}" "${source}\n}  // namespace\n\n${definitions}\n}  // namespace nvx::tool\n")
