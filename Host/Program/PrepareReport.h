#pragma once

#include <iosfwd>
#include <string>

#include "Prepare/PrepareProject.h"

namespace velmora::program {

/// What a preparation did and what it left, for people.
void PrintPreparedText(const prepare::Prepared& prepared, bool colours, std::ostream& out);

/// The same as one JSON object on one line.
void PrintPreparedJson(const prepare::Prepared& prepared, int exitStatus, std::ostream& out);

/// What a preparation left, one line each, as far as it is more than a note.
void PrintLeft(const prepare::Prepared& prepared, std::ostream& out);

}  // namespace velmora::program
