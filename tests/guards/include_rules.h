// Which folder of the module may include which: the layers, and nothing above or outside them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace jex::test {

// One line for each include, in the sources below `module`, that does not point downward.
std::vector<std::string> upward_includes(const std::filesystem::path& module);

}  // namespace jex::test
