// What quorvane-send needs from the operating system beside the C++ library; one source file per
// system implements it and has the program's entry point.
#pragma once

#include <string>
#include <string_view>

namespace quorvane::cli::system {

// Write UTF-8 text, so that a terminal shows it right.
void WriteOutput(std::string_view text);
void WriteError(std::string_view text);
// Whether everything has gone to the output so far.
bool OutputIsWhole();

// Whether somebody may be looking at the output as it is written.
bool OutputIsTerminal();

// Whether it is a terminal that colours what stands between escape sequences.
bool OutputShowsColours();
bool ErrorShowsColours();

// From the first call on, the user's first interruption (Ctrl-C) is only noted; the next one ends
// the program.
void WatchForInterrupt();
bool Interrupted();

// Has standard input give its bytes as they are.
void TakeInputAsBytes();

// A command that keeps others than the owner from reading the file; empty when they can't read it
// as it is, or when there is no such file.
std::string RemedyForReaders(const std::string& file);

// False for a file name that the component would understand as another path than this system does.
bool MeansTheSameToTheComponent(std::string_view file);

// Where the component finds an absolute path with slashes, which may begin with a drive.
std::string ComponentsPath(const std::string& path);

}  // namespace quorvane::cli::system
