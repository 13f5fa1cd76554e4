# Writes Page.css, and Tables.js with Picture.js after it, as C++ texts to OUTPUT. They lie in FOLDER.
file(READ ${FOLDER}/Page.css style)
file(READ ${FOLDER}/Tables.js tables)
file(READ ${FOLDER}/Picture.js picture)
file(WRITE ${OUTPUT} "#include \"Report/PageTexts.h\"

namespace velmora::report {

const std::string_view kPageStyle = R\"~~~(${style})~~~\";
const std::string_view kPageScript = R\"~~~(${tables}${picture})~~~\";

}  // namespace velmora::report
")
