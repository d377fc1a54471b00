# Writes OUTPUT, a C++ source that holds the text of INPUT (a string table) as
# quillmark::builtInEnglishStrings(). Run at build time: cmake -DINPUT=... -DOUTPUT=... -P this.
file(READ "${INPUT}" text)
# A raw string literal cannot hold its own closing delimiter; a table never should.
string(FIND "${text}" ")qm_strings\"" clash)
if(NOT clash EQUAL -1)
  message(FATAL_ERROR "${INPUT} contains the embedding delimiter")
endif()
file(WRITE "${OUTPUT}.tmp" "// Generated at build time from ${INPUT}; edit that file instead.
#include \"settings/built_in_strings.h\"

namespace quillmark {

std::string_view builtInEnglishStrings() {
  static constexpr char kText[] = R\"qm_strings(${text})qm_strings\";
  return {kText, sizeof kText - 1};
}

}  // namespace quillmark
")
# Only a changed table touches the source, so an unchanged one recompiles nothing.
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
