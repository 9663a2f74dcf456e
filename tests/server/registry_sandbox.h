// A registry that is empty at first and seen by this process alone.
#pragma once

#include <windows.h>

#include <string>

namespace quorvane {

// Stands in for HKEY_CLASSES_ROOT while it lives; one at a time.
class RegistrySandbox {
public:
    RegistrySandbox();
    ~RegistrySandbox();
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

private:
    std::string place_;
};

}  // namespace quorvane
