// The object "WScript", as far as our scripts use it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/scripts/host/event_sink.h"
#include "tests/scripts/host/script_object.h"

namespace scripthost {

// WScript.Arguments: Item(index), Count, Length; the object itself is Item.
class ArgumentList final : public ScriptObject {
public:
    explicit ArgumentList(std::vector<std::wstring> values);
    const std::wstring& At(long index) const;

private:
    std::vector<std::wstring> values_;
};

// Echo(values...), Sleep(milliseconds), Quit([code]), CreateObject(ProgID), ConnectObject(object,
// prefix), Arguments, ScriptName, ScriptFullName, and ReadFile(name): a file's bytes as one
// character each, for tests.
class WScript final : public ScriptObject {
public:
    // What Quit makes the engine unwind with. A script under "On Error Resume Next" goes on.
    static constexpr HRESULT kQuit = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, 0x7e57);

    WScript(const std::wstring& script, std::vector<std::wstring> arguments);

    // Where the functions for events are.
    void SetGlobals(Globals globals) { globals_ = std::move(globals); }

    // The code given to Quit, when it was called.
    std::optional<int> QuitCode() const { return quitCode_; }

private:
    ArgumentList arguments_;
    Globals globals_;
    std::optional<int> quitCode_;
};

}  // namespace scripthost
