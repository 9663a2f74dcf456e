#include "tests/platform/registry_home.h"

#include "tests/support/scratch_folder.h"

// The lookup of ProgIDs goes to the real registry whatever a process puts in its place, so the
// tests use that, under names of their own.
RegistryHome::RegistryHome() = default;
RegistryHome::~RegistryHome() = default;
