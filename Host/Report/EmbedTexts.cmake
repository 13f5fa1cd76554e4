# Writes Page.css and Page.js of FOLDER as C++ texts to OUTPUT.
file(READ ${FOLDER}/Page.css style)
file(READ ${FOLDER}/Page.js script)
file(WRITE ${OUTPUT} "#include \"Report/PageTexts.h\"

namespace velmora::report {

const std::string_view kPageStyle = R\"~~~(${style})~~~\";
const std::string_view kPageScript = R\"~~~(${script})~~~\";

}  // namespace velmora::report
")
