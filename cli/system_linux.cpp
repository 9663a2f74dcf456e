#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "cli/system.h"

namespace quorvane::cli::system {

namespace {

void Write(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

std::atomic<bool> g_interrupted{false};

void NoteInterrupt(int) {
    g_interrupted = true;
}

// The file's name as one word of a shell command.
std::string Quoted(const std::string& file) {
    std::string quoted = "'";
    for (const char c : file) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

}  // namespace

void WriteOutput(std::string_view text) {
    Write(stdout, text);
}

void WriteError(std::string_view text) {
    Write(stderr, text);
}

bool OutputIsWhole() {
    return std::ferror(stdout) == 0;
}

bool OutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

bool OutputShowsColours() {
    return isatty(STDOUT_FILENO) != 0 && std::getenv("TERM");
}

bool ErrorShowsColours() {
    return isatty(STDERR_FILENO) != 0 && std::getenv("TERM");
}

void WatchForInterrupt() {
    struct sigaction before {};
    sigaction(SIGINT, nullptr, &before);
    if (before.sa_handler == SIG_IGN) return;  // as a shell has it for what runs in its background
    struct sigaction action {};
    action.sa_handler = NoteInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigaction(SIGINT, &action, nullptr);
}

bool Interrupted() {
    return g_interrupted;
}

void TakeInputAsBytes() {}

std::string RemedyForReaders(const std::string& file) {
    struct stat status;
    if (stat(file.c_str(), &status) != 0 || (status.st_mode & (S_IRGRP | S_IROTH)) == 0) return {};
    return "chmod 600 " + Quoted(file);
}

bool MeansTheSameToTheComponent(std::string_view file) {
    return file.find('\\') == file.npos && file.substr(0, 2).find(':') != 1;
}

std::string ComponentsPath(const std::string& path) {
    return path.starts_with('/') ? path : path.substr(2);  // drives are the root
}

}  // namespace quorvane::cli::system
