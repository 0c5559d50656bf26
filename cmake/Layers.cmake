# add_layer(name FOLDER folder [ROOT dir] [SOURCES file...] [KNOWS layer...] [EXCEPT entry...]): a part of the program
# that sees its own headers and those of the layers it knows, and no others: an include of any other does not compile.
# A layer's headers are ROOT/FOLDER/..., included as "FOLDER/...". Who knows the layer finds them in a directory of links,
# which holds all of the folder but the entries named under EXCEPT (layers of their own). The target is
# filterprocessor_<name>; without sources it is an interface library.
function(add_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 layer "" "FOLDER;ROOT" "SOURCES;KNOWS;EXCEPT")
  if(NOT layer_ROOT)
    set(layer_ROOT ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  set(folder ${layer_ROOT}/${layer_FOLDER})
  set(links ${PROJECT_BINARY_DIR}/layers/${name})
  file(REMOVE_RECURSE ${links})
  file(MAKE_DIRECTORY ${links}/${layer_FOLDER})
  file(GLOB entries CONFIGURE_DEPENDS LIST_DIRECTORIES true RELATIVE ${folder} ${folder}/*)
  foreach(entry IN LISTS entries)
    if((IS_DIRECTORY ${folder}/${entry} OR entry MATCHES "\\.h$") AND NOT entry IN_LIST layer_EXCEPT)
      file(CREATE_LINK ${folder}/${entry} ${links}/${layer_FOLDER}/${entry} SYMBOLIC)
    endif()
  endforeach()

  set(target filterprocessor_${name})
  list(TRANSFORM layer_KNOWS PREPEND filterprocessor_)
  if(layer_SOURCES)
    list(TRANSFORM layer_SOURCES PREPEND ${folder}/)
    add_library(${target} OBJECT ${layer_SOURCES})
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${target} ${scope} ${links})
  target_link_libraries(${target} ${scope} filterprocessor_options ${layer_KNOWS})
endfunction()
