# Writes the review page's sources into a C++ source: PAGE, STYLE, and MODULES joined into one
# script. The modules come in an order in which each uses only what stands before it, and all names
# at their outermost level differ, so that what is imported is there once the lines that import and
# the words that export are taken out.
file(READ "${PAGE}" page)
file(READ "${STYLE}" style)
set(script "")
foreach(module IN LISTS MODULES)
  file(READ "${module}" text)
  string(REGEX REPLACE "(^|\n)import [^;]*;" "\\1" text "${text}")
  string(REGEX REPLACE "(^|\n)export " "\\1" text "${text}")
  string(APPEND script "${text}\n")
endforeach()
foreach(part page style script)
  if("${${part}}" MATCHES "\\)source\"")
    message(FATAL_ERROR "the ${part} holds what ends it in C++")
  endif()
endforeach()
file(WRITE "${OUTPUT}" "#include \"app/review/page_sources.h\"

namespace vorlane::review {

const std::string_view kPageSource = R\"source(${page})source\";
const std::string_view kStyleSource = R\"source(${style})source\";
const std::string_view kScriptSource = R\"source(${script})source\";

}  // namespace vorlane::review
")
