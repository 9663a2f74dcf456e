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

    // All keys and values: on Windows a line each, as TextOf has it, with those keys that have
    // neither values nor subkeys; on Linux the text of the registry's file.
    std::string Contents() const;

    // Has writing fail from here on; later in the course of a registration with each step. False
    // when there is no such step; on Windows there is none in what is registered already.
    bool Hinder(int step);
    void Unhinder();

private:
    std::string place_;
    std::string obstacle_;
};

}  // namespace quorvane
