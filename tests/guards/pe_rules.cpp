#include "guards/pe_rules.h"

#include "guards/core_entries.h"

#include <regex>
#include <set>

namespace jex::test {

Breaches exports_differ(const PeFile& file, const std::vector<std::string>& listed,
                        const std::map<std::string, std::string>& forwarded) {
  const std::set<std::string> names(listed.begin(), listed.end());
  Breaches breaches;
  for (const auto& name : names)
    if (!file.exports.count(name)) breaches.push_back("listed, not exported: " + name);
  for (const auto& [name, entry] : file.exports) {
    const auto target = forwarded.find(name);
    const std::string expected = target == forwarded.end() ? "" : target->second;
    if (!names.count(name))
      breaches.push_back("exported, not listed: " + name);
    else if (entry.forwarder != expected)
      breaches.push_back(name + " forwarded to '" + entry.forwarder + "', not '" + expected + "'");
    else if (entry.forwarder.empty() && !entry.code)
      breaches.push_back("no code: " + name);
  }
  return breaches;
}

Breaches foreign_imports(const PeFile& file) {
  const std::regex allowed(core_entries);
  Breaches breaches;
  for (const auto& [library, names] : file.imports) {
    if (library == "KERNEL32.dll" || library == "msvcrt.dll") continue;
    if (library != "jex_core.dll") {
      breaches.push_back("needs " + library);
      continue;
    }
    for (const auto& name : names)
      if (!std::regex_match(name, allowed)) breaches.push_back(name);
  }
  if (!file.imports.count("jex_core.dll")) breaches.push_back("does not need jex_core.dll");
  return breaches;
}

Breaches not_one_address(const PeFile& file, const std::vector<std::string>& names) {
  Breaches breaches;
  unsigned first = 0;
  for (const auto& name : names) {
    const auto entry = file.exports.find(name);
    if (entry == file.exports.end()) {
      breaches.push_back("not exported: " + name);
      continue;
    }
    if (!first) first = entry->second.address;
    if (!first || entry->second.address != first) breaches.push_back("at another address: " + name);
  }
  return breaches;
}

Breaches unsafe_file(const PeFile& file) {
  Breaches breaches;
  for (const auto& section : file.sections)
    if (section.writable && section.executable)
      breaches.push_back("writable and executable: " + section.name);
  if (!file.relocatable) breaches.push_back("cannot be loaded anywhere");
  if (!file.no_execute) breaches.push_back("asks for executable data");
  if (file.thread_storage) breaches.push_back("has storage for each thread");
  return breaches;
}

}  // namespace jex::test
