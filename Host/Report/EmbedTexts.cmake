# Writes Page.css, and the scripts one after the other, as C++ texts to OUTPUT. They lie in FOLDER.
file(READ ${FOLDER}/Page.css style)
file(READ ${FOLDER}/Rows.js rows)
file(READ ${FOLDER}/Tables.js tables)
file(READ ${FOLDER}/Picture.js picture)
file(WRITE ${OUTPUT} "#include \"Report/PageTexts.h\"

namespace velmora::report {

const std::string_view kPageStyle = R\"~~~(${style})~~~\";
const std::string_view kPageScript = R\"~~~(${rows}${tables}${picture})~~~\";

}  // namespace velmora::report
")
