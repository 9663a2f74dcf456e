#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/server/registry_sandbox.h"

namespace quorvane {
namespace {

void LimitFileSize(rlim_t bytes) {
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

}  // namespace

RegistrySandbox::RegistrySandbox() {
    std::string folder = (std::filesystem::temp_directory_path() / "quorvane-XXXXXX").string();
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    place_ = folder;
    setenv("XDG_DATA_HOME", place_.c_str(), 1);
}

RegistrySandbox::~RegistrySandbox() {
    unsetenv("XDG_DATA_HOME");
    std::filesystem::remove_all(place_);
}

std::string RegistrySandbox::Contents() const {
    std::ifstream file(place_ + "/quorvane/registry", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// The disk is full when the file has grown by so much.
bool RegistrySandbox::Hinder(int step) {
    constexpr std::size_t kBytes = 400;
    constexpr int kSteps = 100;
    signal(SIGXFSZ, SIG_IGN);
    LimitFileSize(Contents().size() + kBytes * static_cast<std::size_t>(step));
    return step < kSteps;
}

void RegistrySandbox::Unhinder() {
    LimitFileSize(RLIM_INFINITY);
}

}  // namespace quorvane
