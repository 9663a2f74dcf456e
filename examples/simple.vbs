' Sends a short text.
'
'     cscript simple.vbs server [port]

Option Explicit

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then mail.SmtpPort = CLng(WScript.Arguments(1))

code = mail.SimpleSendScriptable("Zoe <zoe@bjork.example>", _
    "Ann Miller <ann@example.org>; bob@example.org", _
    "Tonight", _
    "Dinner at eight?", _
    text)

If code <> 0 Then
    WScript.Echo "Not sent (" & code & "): " & text
    WScript.Quit 1
End If
WScript.Echo "Sent."
