// The subcommands of xvkfc. Each add*Command registers its subcommand, with
// its options and --help text, on the program's CLI11 app and returns it with
// the function that runs it after parsing; that function returns the exit
// code and throws ToolError for bad input.
#ifndef XVKFC_TOOLS_COMMANDS_COMMANDS_H_
#define XVKFC_TOOLS_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace tool {

// Options every subcommand understands.
struct GlobalOptions {
  bool quiet = false;        // no progress on standard error
  bool verbose = false;      // the library's log lines on standard error
  std::string models = ".";  // model folder of the closed libraries
};

struct Command {
  CLI::App* subcommand;
  std::function<int()> run;
};

// Adds the required FILE argument `name` of a subcommand that reads features.
inline CLI::Option* addFeaturesArgument(CLI::App* sub, const std::string& name, std::string& path) {
  return sub
      ->add_option(name, path, "Features: NumPy (N x 960), or raw float32 named *.f32 or *.raw")
      ->type_name("FILE")
      ->required();
}

// Adds --ids, the optional file of face ids for the features.
inline CLI::Option* addFaceIdsOption(CLI::App* sub, std::string& path) {
  return sub->add_option("--ids", path, "Face id of each feature (default: 0..N-1)")
      ->type_name("FILE");
}

// Accepts integers of 0 or more with a plain message otherwise (CLI11's own
// range check prints the double range, 309 digits).
inline CLI::Validator nonNegative() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        return !text.empty() && text[0] == '-' ? "must be 0 or more, not " + text : std::string();
      },
      "0 or more");
}

// Accepts integers of 1 or more, with the same plain message.
inline CLI::Validator positive() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        const bool zero = text.find_first_not_of("+0") == std::string::npos;
        return text.empty() || text[0] == '-' || zero ? "must be 1 or more, not " + text
                                                      : std::string();
      },
      "1 or more");
}

Command addClusterCommand(CLI::App& app, const GlobalOptions& global);
Command addRepresentativeCommand(CLI::App& app, const GlobalOptions& global);
Command addRecommendCommand(CLI::App& app, const GlobalOptions& global);
Command addCompareCommand(CLI::App& app, const GlobalOptions& global);
Command addExtractCommand(CLI::App& app, const GlobalOptions& global);
Command addDemoCommand(CLI::App& app, const GlobalOptions& global);

}  // namespace tool

#endif  // XVKFC_TOOLS_COMMANDS_COMMANDS_H_
