#include "tools/commands/subcommand_typo.h"

#include <algorithm>

namespace tool {
namespace {

// Edits (insertion, deletion, substitution, swap of neighbours) that turn
// `a` into `b`.
size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::vector<size_t>> d(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    for (size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min(
          {d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  }
  return d[a.size()][b.size()];
}

}  // namespace

std::string unknownSubcommand(const std::vector<std::string>& args,
                              const std::vector<std::string>& names) {
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "--") return "";
    if (arg == "--models") {
      ++i;
      continue;
    }
    if (!arg.empty() && arg[0] == '-') continue;
    return std::find(names.begin(), names.end(), arg) == names.end() ? arg : "";
  }
  return "";
}

std::string describeUnknownSubcommand(const std::string& word,
                                      const std::vector<std::string>& names) {
  std::string closest;
  size_t fewest = word.size() + 1;
  for (const std::string& name : names) {
    const size_t edits = editDistance(word, name);
    if (edits < fewest) fewest = edits, closest = name;
  }
  // Two edits at most, and fewer than half the name's letters: "demo" for
  // "dmeo", not for "echo".
  if (!closest.empty() && fewest <= 2 && 2 * fewest < closest.size()) {
    return "unknown subcommand '" + word + "'; did you mean '" + closest + "'?";
  }
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return "unknown subcommand '" + word + "' (the subcommands are " + list + ")";
}

}  // namespace tool
