// What a kernel module of Windows may be. Each rule returns one line for each breach; none means
// that the file keeps the rule.
#pragma once

#include "guards/pe_file.h"

#include <map>
#include <string>
#include <vector>

namespace jex::test {

using Breaches = std::vector<std::string>;

// The exports are the listed names and no others. Those with a target are forwarders to it, and the
// others are code of the module's own.
Breaches exports_differ(const PeFile& file, const std::vector<std::string>& listed,
                        const std::map<std::string, std::string>& forwarded);

// Of the core only what is on the list of its entries; besides it the system's kernel and the C
// library.
Breaches foreign_imports(const PeFile& file);

// The names all stand for one address.
Breaches not_one_address(const PeFile& file, const std::vector<std::string>& names);

// No section both writable and executable; loadable anywhere; no storage for each thread, with
// which the system would not leave off telling of threads.
Breaches unsafe_file(const PeFile& file);

}  // namespace jex::test
