' Checks for test scripts. A failed one is shown and the script goes on; Finish ends it.
Option Explicit

Dim failures
failures = 0

Sub Fail(text)
    failures = failures + 1
    WScript.Echo "FAILED " & text
End Sub

' Value and type must be the same.
Sub Equal(what, actual, expected)
    If VarType(actual) <> VarType(expected) Then
        Fail what & ": " & TypeName(actual) & ", expected " & TypeName(expected)
    ElseIf actual <> expected Then
        Fail what & ": '" & actual & "', expected '" & expected & "'"
    End If
End Sub

' The call before must have failed with this number, description and source. Used where errors
' don't end the script.
Sub Failed(what, number, description, source)
    If Err.Number <> number Then
        Fail what & ": error " & Hex(Err.Number) & ", expected " & Hex(number)
    ElseIf Err.Description <> description Then
        Fail what & ": '" & Err.Description & "', expected '" & description & "'"
    ElseIf Err.Source <> source Then
        Fail what & ": source '" & Err.Source & "', expected '" & source & "'"
    End If
    Err.Clear
End Sub

Sub Succeeded(what)
    If Err.Number <> 0 Then Fail what & ": " & Hex(Err.Number) & " " & Err.Description
    Err.Clear
End Sub

Sub Finish
    If failures = 0 Then
        WScript.Echo "all checks passed"
        WScript.Quit 0
    End If
    WScript.Echo failures & " checks failed"
    WScript.Quit 1
End Sub
