// Purpose: threads enter and leave apartments in pairs, and class objects are there for those that
// are in one.
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

// Runs on a thread of its own, which starts outside any apartment.
template <class Function>
void OnFreshThread(Function function) {
    std::thread(function).join();
}

TEST(Apartments, AreEnteredAndLeftInPairs) {
    OnFreshThread([] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
        CoUninitialize();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
        CoUninitialize();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        CoUninitialize();
    });
}

TEST(Apartments, AreNeededToCreate) {
    OnFreshThread([] {
        void* object = &object;
        EXPECT_EQ(
            CoCreateInstance(IID_IErrorInfo, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
            CO_E_NOTINITIALIZED);
        EXPECT_EQ(object, nullptr);
        CoInitialize(nullptr);
        object = &object;
        EXPECT_EQ(
            CoCreateInstance(IID_IErrorInfo, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
            REGDB_E_CLASSNOTREG);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(
            CoCreateInstance(IID_IErrorInfo, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, nullptr),
            E_POINTER);
        CoUninitialize();
    });
}

TEST(TaskMemory, IsThere) {
    char* const block = static_cast<char*>(CoTaskMemAlloc(3));
    ASSERT_NE(block, nullptr);
    block[2] = 'x';
    CoTaskMemFree(block);
    void* const nothing = CoTaskMemAlloc(0);
    EXPECT_NE(nothing, nullptr);
    CoTaskMemFree(nothing);
    CoTaskMemFree(nullptr);
}

}  // namespace
