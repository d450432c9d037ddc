#pragma once

namespace fe_db_tools {

/// Opens a placeholder on each of the descriptors 0 to 2 that the program was started without.
/// Otherwise the next file to be opened, a database say, would get that descriptor, and whatever is
/// printed later would be written into it. To be called before anything opens a file.
///
/// Reading standard input and writing standard output fail on a placeholder, as they do without it:
/// results that nobody gets are no success. Messages on standard error are dropped. A program that
/// this one starts does not inherit placeholders: it has the descriptors that this one was given.
/// Throws std::runtime_error when there is nothing to open.
void openStandardStreams();

}  // namespace fe_db_tools
