# Writes OUTPUT: an initializer of kit::Preset for each chain file in FOLDER.
# Use: cmake -D FOLDER=... -D OUTPUT=... -P EmbedPresets.cmake
file(GLOB files ${FOLDER}/*.json)
list(SORT files)
set(rows "")
foreach(file IN LISTS files)
  cmake_path(GET file STEM name)
  file(READ ${file} text)
  string(APPEND rows "{\"${name}\", R\"json(${text})json\"},\n")
endforeach()
file(WRITE ${OUTPUT} "${rows}")
