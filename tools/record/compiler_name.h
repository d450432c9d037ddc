#pragma once

#include <string>
#include <string_view>

namespace fe_db_tools {

/// True of programs that run the compiler named after them: ccache and its like.
bool isCompilerWrapper(std::string_view name);

/// True of shells and script interpreters: what follows them is a script and not a flag.
bool isInterpreter(std::string_view name);

/// The target in the file name of a cross compiler, `arm-none-eabi` of `arm-none-eabi-g++-12`.
/// Empty when the name begins with anything but a processor, as `musl-gcc` does.
std::string targetPrefix(const std::string& compiler);

}  // namespace fe_db_tools
