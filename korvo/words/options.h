// The command line of Korvo's programs.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace korvo {

struct CommandLine {
  std::vector<std::pair<const char*, std::string*>> values;  ///< "--name VALUE"
  std::vector<std::pair<const char*, bool*>> flags;          ///< "--name"
  std::string* project;                                      ///< the one argument that is no option
};

/// Reads the arguments of `main` into what the line names. What is wrong with them, in UTF-8; empty for nothing.
std::string ReadCommandLine(int count, char** arguments, const CommandLine& line);

/// Fills the places of standard streams that the caller has closed, so that no table is opened there and gets what is
/// said written into it. What fills them gives nothing and takes nothing.
bool HoldStandardStreams();

/// The plug-in's library that lies beside the program, path on disk.
std::string PluginBesideProgram();

}  // namespace korvo
