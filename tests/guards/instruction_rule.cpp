// Which instructions are newer than SSE3: the one list of them.

#include "guards/instruction_rule.h"

#include <algorithm>
#include <regex>

namespace jex::test {
namespace {

const struct {
  const char* set;
  const char* mnemonics;  // a regular expression for the whole mnemonic
} newer_sets[] = {
    {"SSSE3", "pshufb|phadd(w|d|sw)|phsub(w|d|sw)|pmaddubsw|pmulhrsw|psign[bwd]|palignr|pabs[bwd]"},
    {"SSE4.1",
     "pmulld|pmuldq|v?blendv?p[sd]|pblendvb|pblendw|p(min|max)(sb|sd|uw|ud)|round[ps][sd]|insertps|"
     "extractps|pinsr[bdq]|pextr[bdq]|pmov[sz]x(bw|bd|bq|wd|wq|dq)|mpsadbw|phminposuw|ptest|"
     "pcmpeqq|packusdw|movntdqa|dpp[sd]"},
    {"SSE4.2", "pcmp[ei]str[im](32|64)?|pcmpgtq|crc32"},
    {"SSE4a", "extrq|insertq|movnts[sd]"},
    // An older processor runs tzcnt as bsf and lzcnt as bsr, with other results: none may be there.
    {"bit counts", "popcnt|lzcnt|tzcnt"},
    {"BMI",
     "andn|bextr|blsi|blsmsk|blsr|bzhi|mulx|pdep|pext|rorx|sarx|shlx|shrx|"
     "bls(fill|ic)|tzmsk|t1mskc|blc(fill|ic|i|msk|s)"},
    {"ADX", "adcx|adox"},
    {"MOVBE", "movbe"},
    {"AES, SHA, GF", "aes\\w+|pclmul\\w+|sha(1|256)\\w+|gf2p8\\w+"},
    {"random numbers", "rdrand|rdseed"},
    {"XSAVE, TSX", "x(save|rstor|getbv|setbv)\\w*|xbegin|xend|xabort|xtest"},
    {"3DNow!",
     "pf(add|sub|subr|mul|acc|nacc|pnacc|cmp(ge|gt|eq)|min|max|rcp\\w*|rsq\\w*)|"
     "pi2f[dw]|pf2i[dw]|pavgusb|pmulhrw|pswapd|femms"},
    // AVX, FMA and all that came with them are encoded with a prefix of their own and named v...;
    // the two old names that begin so are those of system programs.
    {"AVX, FMA", "v(?!er[rw]$)\\w+|k(mov|and|or|xor|not|add|shift|unpck|test|ortest)\\w*"},
};

struct Compiled {
  const char* set;
  std::regex mnemonics;
};

const std::vector<Compiled>& compiled() {
  static const std::vector<Compiled> sets = [] {
    std::vector<Compiled> sets;
    for (const auto& [set, mnemonics] : newer_sets) sets.push_back({set, std::regex(mnemonics)});
    return sets;
  }();
  return sets;
}

bool is_prefix(const std::string& word) {
  static const std::regex prefix(
      "rep(z|nz|e|ne)?|lock|data16|addr16|notrack|bnd|[c-gs]s|"
      "xacquire|xrelease|\\{\\w+\\}");
  return std::regex_match(word, prefix);
}

// "mnemonic operands" without prefixes and without the name of the place that is addressed.
std::pair<std::string, std::string> split(const std::string& instruction) {
  size_t begin = 0;
  for (;;) {
    begin = instruction.find_first_not_of(' ', begin);
    if (begin == std::string::npos) return {};
    const size_t end = std::min(instruction.find(' ', begin), instruction.size());
    const std::string word = instruction.substr(begin, end - begin);
    if (!is_prefix(word)) {
      const size_t name = std::min(instruction.find('<', end), instruction.size());
      return {word, instruction.substr(end, name - end)};
    }
    begin = end;
  }
}

}  // namespace

std::string newer_than_sse3(const std::string& instruction) {
  const auto [mnemonic, operands] = split(instruction);
  if (mnemonic == "(bad)") return "unknown encoding";
  for (const auto& [set, mnemonics] : compiled())
    if (std::regex_match(mnemonic, mnemonics)) return set;
  if (operands.find("ymm") != std::string::npos || operands.find("zmm") != std::string::npos)
    return "wide registers";
  // To memory only the form of SSE4.1 exists.
  if (mnemonic == "pextrw" && operands.find('[') != std::string::npos) return "SSE4.1";
  return {};
}

void Disassembly::read(const std::string& line) {
  // "  1234:<tab>mnemonic operands"
  const size_t tab = line.find(":\t");
  if (tab == std::string::npos) return;
  ++instructions;
  const std::string instruction = line.substr(tab + 2, line.find_last_not_of(" \r") - tab - 1);
  if (const std::string set = newer_than_sse3(instruction); !set.empty())
    newer.push_back(set + ": " + line.substr(0, tab) + ": " + instruction);
}

}  // namespace jex::test
