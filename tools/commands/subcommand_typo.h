// A mistyped subcommand, told apart from other command-line mistakes so that
// the message can name the subcommand that was probably meant.
#ifndef XVKFC_TOOLS_COMMANDS_SUBCOMMAND_TYPO_H_
#define XVKFC_TOOLS_COMMANDS_SUBCOMMAND_TYPO_H_

#include <string>
#include <vector>

namespace tool {

// The first word of `args` (the program's arguments without its name) that
// is not an option or the value of --models, when it is none of `names`;
// empty otherwise.
std::string unknownSubcommand(const std::vector<std::string>& args,
                              const std::vector<std::string>& names);

// "unknown subcommand 'clustr'; did you mean 'cluster'?" with the name of
// `names` fewest edits away (a swap of two neighbouring letters is one
// edit), when it is close enough to be meant; otherwise the message lists
// every name.
std::string describeUnknownSubcommand(const std::string& word,
                                      const std::vector<std::string>& names);

}  // namespace tool

#endif  // XVKFC_TOOLS_COMMANDS_SUBCOMMAND_TYPO_H_
