// Loading modules, their entries, and finding our own folder.
#include "platform/files.h"
#include "platform/modules.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zkr {
namespace {

using namespace platform;

#ifdef _WIN32
constexpr const char* SystemModule = "msvcrt.dll";
#else
constexpr const char* SystemModule = "libm.so.6";
#endif

TEST(Modules, LoadAndGiveTheirEntries) {
    HMODULE module = LoadLibraryA(SystemModule);
    ASSERT_NE(module, nullptr);
    auto* power = GetModuleFunction<double(double, double)>(module, "pow");
    ASSERT_NE(power, nullptr);
    EXPECT_EQ(power(2, 10), 1024);
    EXPECT_EQ(GetProcAddress(module, "no such entry"), nullptr);
    EXPECT_NE(FreeLibrary(module), FALSE);
    EXPECT_EQ(LoadLibraryA("no such module"), nullptr);
#ifndef _WIN32
    EXPECT_EQ(GetProcAddress(module, "pow"), nullptr) << "freed";
    EXPECT_EQ(FreeLibrary(module), FALSE);
#endif
}

TEST(Modules, KnowTheirOwnFolder) {
    char folder[4096];
    ASSERT_TRUE(GetOwnModuleFolder(folder, sizeof folder));
    const size_t length = std::strlen(folder);
    EXPECT_TRUE(folder[length - 1] == '/' || folder[length - 1] == '\\');
    EXPECT_NE(GetFileAttributesA(folder) & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_FALSE(GetOwnModuleFolder(folder, length)) << "no room for the zero";
}

} // namespace
} // namespace zkr
