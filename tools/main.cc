// xvkfc: clusters face features end to end through the library's public
// interface, batch after batch, with quality measures and an HTML report.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/commands/commands.h"
#include "tools/commands/subcommand_typo.h"
#include "tools/run/library_log.h"
#include "tools/printable_text.h"
#include "tools/tool_error.h"
#include "tools/version.h"

int main(int argc, char** argv) {
  CLI::App app{
      "xvkfc: cluster face features with libxvkfcEngineTAVO, the way a photo application "
      "does.\nStart with 'xvkfc demo', or 'xvkfc SUBCOMMAND --help' for one subcommand.",
      "xvkfc"};  // named here, so that usage lines do not show the path it was started by
  app.set_version_flag("--version", tool::versionText());
  app.require_subcommand(1);
  app.fallthrough();
  tool::GlobalOptions global;
  app.add_flag("-q,--quiet", global.quiet, "Print no progress on standard error");
  app.add_flag("-v,--verbose", global.verbose,
               "Show the library's own log lines on standard error");
  app.add_option("--models", global.models,
                 "Folder of the closed libraries' model files (on a workstation their stand-ins "
                 "accept any readable folder)")
      ->type_name("DIR")
      ->capture_default_str();

  const std::vector<tool::Command> commands = {
      tool::addClusterCommand(app, global),   tool::addRepresentativeCommand(app, global),
      tool::addRecommendCommand(app, global), tool::addCompareCommand(app, global),
      tool::addExtractCommand(app, global),   tool::addDemoCommand(app, global),
  };

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);  // --help, --version
    // The parser quotes the argument it refuses, which may hold any byte.
    std::vector<std::string> names;
    for (const tool::Command& command : commands) names.push_back(command.subcommand->get_name());
    const std::string typo = tool::unknownSubcommand({argv + 1, argv + argc}, names);
    const std::string message =
        typo.empty() ? e.what() : tool::describeUnknownSubcommand(typo, names);
    std::fprintf(stderr, "xvkfc: error: %s\nRun with --help for more information.\n",
                 tool::printableText(message).c_str());
    return tool::kExitUsage;
  }
  tool::routeLibraryLog(global.verbose);
  try {
    for (const tool::Command& command : commands) {
      if (command.subcommand->parsed()) return command.run();
    }
  } catch (const tool::UsageError& e) {
    std::fprintf(stderr, "xvkfc: error: %s\nRun with --help for more information.\n", e.what());
    return tool::kExitUsage;
  } catch (const std::exception& e) {  // ToolError and the library's own failures
    std::fprintf(stderr, "xvkfc: error: %s\n", tool::printableText(e.what()).c_str());
    return tool::kExitBadInput;
  }
  return tool::kExitUsage;
}
