// Where the registry tests write: a place of their own where there can be one.
#pragma once

#include <memory>

class ScratchFolder;

class RegistryHome {
public:
    RegistryHome();
    RegistryHome(const RegistryHome&) = delete;
    RegistryHome& operator=(const RegistryHome&) = delete;
    ~RegistryHome();

private:
    std::unique_ptr<ScratchFolder> folder_;
};
