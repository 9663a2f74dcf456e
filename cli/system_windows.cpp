#include <windows.h>
#include <aclapi.h>
#include <fcntl.h>
#include <io.h>

#include <atomic>
#include <cstdio>
#include <memory>

#include "cli/system.h"
#include "cli/text_input.h"
#include "quorvane.hpp"

namespace quorvane::cli::system {

namespace {

bool Write(DWORD which, std::string_view text) {
    const HANDLE handle = GetStdHandle(which);
    DWORD mode = 0;
    DWORD written = 0;
    if (!GetConsoleMode(handle, &mode)) {
        return WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
               written == text.size();
    }
    const client::Bstr wide(text);
    return WriteConsoleW(handle, static_cast<BSTR>(wide), SysStringLen(wide), &written, nullptr);
}

bool g_outputIsWhole = true;

// Since Windows 10; older consoles refuse.
bool TurnOnColours(DWORD which) {
    const HANDLE handle = GetStdHandle(which);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) &&
           SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

std::atomic<bool> g_interrupted{false};

// Called on a thread of the system's; false has it end the program.
BOOL WINAPI NoteInterrupt(DWORD event) {
    return event == CTRL_C_EVENT && !g_interrupted.exchange(true);
}

struct FreeLocal {
    void operator()(void* block) const { LocalFree(block); }
};

// Who the file's protection lets read it, beside its owner, the system and administrators.
bool IsTrusted(PSID reader, PSID owner) {
    return EqualSid(reader, owner) || IsWellKnownSid(reader, WinLocalSystemSid) ||
           IsWellKnownSid(reader, WinBuiltinAdministratorsSid) ||
           IsWellKnownSid(reader, WinCreatorOwnerRightsSid);
}

bool LetsOthersRead(const ACL* list, PSID owner) {
    if (!list) return true;  // no protection at all
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        if (!GetAce(const_cast<ACL*>(list), i, &entry)) return true;
        const auto* header = static_cast<const ACE_HEADER*>(entry);
        if (header->AceType != ACCESS_ALLOWED_ACE_TYPE || (header->AceFlags & INHERIT_ONLY_ACE)) {
            continue;
        }
        auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        const bool reads = allowed->Mask & (FILE_READ_DATA | GENERIC_READ | GENERIC_ALL);
        if (reads && !IsTrusted(&allowed->SidStart, owner)) return true;
    }
    return false;
}

}  // namespace

void WriteOutput(std::string_view text) {
    if (!Write(STD_OUTPUT_HANDLE, text)) g_outputIsWhole = false;
}

void WriteError(std::string_view text) {
    Write(STD_ERROR_HANDLE, text);
}

bool OutputIsWhole() {
    return g_outputIsWhole;
}

bool OutputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

bool OutputShowsColours() {
    return TurnOnColours(STD_OUTPUT_HANDLE);
}

bool ErrorShowsColours() {
    return TurnOnColours(STD_ERROR_HANDLE);
}

void WatchForInterrupt() {
    SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

bool Interrupted() {
    return g_interrupted;
}

void TakeInputAsBytes() {
    _setmode(_fileno(stdin), _O_BINARY);
}

std::string RemedyForReaders(const std::string& file) {
    std::wstring path = PathOf(file).wstring();
    PSID owner = nullptr;
    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD status = GetNamedSecurityInfoW(
        path.data(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner,
        nullptr, &list, nullptr, &descriptor);
    if (status != ERROR_SUCCESS) return {};
    const std::unique_ptr<void, FreeLocal> held(descriptor);
    if (!LetsOthersRead(list, owner)) return {};
    return "icacls \"" + file + "\" /inheritance:r /grant:r \"%USERNAME%:F\"";
}

bool MeansTheSameToTheComponent(std::string_view) {
    return true;
}

std::string ComponentsPath(const std::string& path) {
    return path;
}

}  // namespace quorvane::cli::system
