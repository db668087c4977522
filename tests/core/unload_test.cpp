// A host loads the library, uses it on threads that live on, and unloads it: nothing of it may run or stay
// then. The program does not link the library.
#include "zkr13n/frame.h"
#include "zkr13n/locks.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#ifndef _WIN32
#include <dlfcn.h>
#endif

namespace {

#ifdef _WIN32
using Module = HMODULE;
Module Load() {
    return LoadLibraryA(ZKR_LIBRARY);
}
void Unload(Module module) {
    FreeLibrary(module);
}
bool IsLoaded() {
    return GetModuleHandleA(ZKR_LIBRARY) != nullptr;
}
void* Find(Module module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(module, name));
}
#else
using Module = void*;
Module Load() {
    return dlopen(ZKR_LIBRARY, RTLD_NOW | RTLD_LOCAL);
}
void Unload(Module module) {
    dlclose(module);
}
bool IsLoaded() {
    void* module = dlopen(ZKR_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (module != nullptr) dlclose(module);
    return module != nullptr;
}
void* Find(Module module, const char* name) {
    return dlsym(module, name);
}
#endif

TEST(Unload, ThreadsOutliveTheLibrary) {
    for (int round = 0; round < 3; ++round) {
        Module module = Load();
        ASSERT_NE(module, nullptr);
        const auto defaultDithering =
            reinterpret_cast<decltype(&Z_GetDefaultDithering)>(Find(module, "Z_GetDefaultDithering"));
        const auto shutdown = reinterpret_cast<decltype(&Z_IntShutdown)>(Find(module, "Z_IntShutdown"));
        ASSERT_TRUE(defaultDithering != nullptr && shutdown != nullptr);

        std::promise<void> used, unloaded;
        std::thread thread([&] {
            EXPECT_EQ(defaultDithering(), 7);
            used.set_value();
            unloaded.get_future().wait();
        });
        used.get_future().wait();
        EXPECT_EQ(defaultDithering(), 7);
        if (round == 2) shutdown();
        Unload(module);
        EXPECT_FALSE(IsLoaded());
        unloaded.set_value();
        thread.join();
    }
}

} // namespace
