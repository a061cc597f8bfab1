// The command line: which words ask for what.
#pragma once

namespace tools {

/// Reads the arguments and carries out the command; answers --help and --version. What is wrong with the arguments, or what
/// the command cannot do, is a Failure.
void runCommandLine(int argc, char** argv);

} // namespace tools
