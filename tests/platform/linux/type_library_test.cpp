// The type library that is made of the definition on Linux says what the one of Quorvane.dll says.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/server/type_library_text.h"

namespace quorvane {
namespace {

TEST(TypeLibrary, EqualsTheOneOfTheWindowsBuild) {
    std::ostringstream reviewed;
    reviewed << std::ifstream(QUORVANE_TEST_DATA "/server/typelib.txt").rdbuf();
    ASSERT_FALSE(reviewed.str().empty());
    EXPECT_EQ(TypeLibraryText(OLESTR("Quorvane.dll")), reviewed.str());
}

}  // namespace
}  // namespace quorvane
