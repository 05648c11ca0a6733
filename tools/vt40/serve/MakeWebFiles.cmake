# Makes OUTPUT, a source that holds FILES, a list of path=file, for FindWebFile. What a browser is told of a file's
# type follows from its name; an index.html is also the file of its folder.
set(types html=text/html css=text/css js=text/javascript json=application/json svg=image/svg+xml png=image/png
    ico=image/x-icon yaml=application/yaml txt=text/plain webmanifest=application/manifest+json)
set(rows)
foreach(entry IN LISTS FILES)
  string(REGEX MATCH "^([^=]*)=(.*)$" matched "${entry}")
  set(path ${CMAKE_MATCH_1})
  set(file ${CMAKE_MATCH_2})
  string(REGEX MATCH "[^.]*$" ending "${path}")
  set(type)
  foreach(pair IN LISTS types)
    if(pair MATCHES "^${ending}=(.*)$")
      set(type ${CMAKE_MATCH_1})
    endif()
  endforeach()
  if(NOT type)
    message(FATAL_ERROR "${file}: no type is known for files of that ending")
  endif()
  if(type MATCHES "^(text|application)/")
    string(APPEND type "; charset=utf-8")
  endif()
  file(READ "${file}" bytes HEX)
  string(LENGTH "${bytes}" digits)
  math(EXPR size "${digits} / 2")
  # Lines of 64 bytes; a compiler takes strings far quicker than lists of numbers.
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
  string(REPEAT "\\\\x[0-9a-f][0-9a-f]" 64 line)
  string(REGEX REPLACE "(${line})" "\\1\"\n\"" bytes "${bytes}")
  string(APPEND rows "    {\"/${path}\", \"${type}\",\n\"${bytes}\", ${size}},\n")
  if(path MATCHES "^(.*/)?index.html$")
    string(APPEND rows "    {\"/${CMAKE_MATCH_1}\", \"${type}\",\n\"${bytes}\", ${size}},\n")
  endif()
endforeach()
file(WRITE "${OUTPUT}" "// Made by MakeWebFiles.cmake.
#include \"serve/WebFiles.h\"

namespace Serve {

const StWebFile* FindWebFile(const std::string& sPath) {
  static constexpr StWebFile caFiles[] = {
${rows}  };
  for (const StWebFile& oFile : caFiles)
    if (sPath == oFile.szPath) return &oFile;
  return nullptr;
}

}  // namespace Serve
")
