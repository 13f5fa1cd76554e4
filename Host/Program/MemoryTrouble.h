#pragma once

namespace velmora::program {

/// Prepares for the day on which memory runs out: whatever part of the program meets it, a library
/// too, the program says so on standard error and ends with `status`.
///
/// A small reserve is given back at the first failure, so that a passing one is passed, and there
/// is memory to tell what happened. What still fails then is thrown as std::bad_alloc; where code
/// lets no exception pass, which would end the program by a signal, it is told here.
void PrepareForLackOfMemory(int status);

/// Says on standard error that memory has run out. Takes none.
void TellLackOfMemory();

}  // namespace velmora::program
