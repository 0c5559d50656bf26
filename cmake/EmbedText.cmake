# embed_text(layer name file...): gives the sources of a layer a header NAME.h that holds the text of each file, as a constant
# kit::NAME::FILE_EXTENSION and, with its name, in kit::NAME::files.
function(embed_text layer name)
  string(TOUPPER ${name} guard)
  set(constants)
  set(entries)
  foreach(file IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    get_filename_component(file_name ${file} NAME)
    string(REPLACE "." "_" constant ${file_name})
    file(READ ${file} text)
    # The size is given, since counting a long text takes more steps than a compiler allows.
    string(APPEND constants "inline constexpr char ${constant}_text[] = R\"~~~(${text})~~~\";\n"
      "inline constexpr std::string_view ${constant}(${constant}_text, sizeof ${constant}_text - 1);\n")
    string(APPEND entries "{\"${file_name}\", ${constant}},\n")
  endforeach()
  set(folder ${PROJECT_BINARY_DIR}/generated/${name})
  file(CONFIGURE OUTPUT ${folder}/${name}.h @ONLY NEWLINE_STYLE UNIX CONTENT
    "#ifndef KIT_@guard@_H\n#define KIT_@guard@_H\n#include <string_view>\n#ifdef __clang__\n#pragma clang diagnostic ignored \"-Woverlength-strings\"\n#endif\nnamespace kit::@name@ {\n@constants@struct File {\n  std::string_view name, text;\n};\ninline constexpr File files[] = {\n@entries@};\n}\n#endif\n")
  target_include_directories(filterprocessor_${layer} PRIVATE ${folder})
endfunction()
