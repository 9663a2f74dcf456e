' Sends two files.
'
'     cscript attachments.vbs server [port]

Option Explicit

Dim files, folder
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.BuildPath(files.GetParentFolderName(WScript.ScriptFullName), "sample")

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then mail.SmtpPort = CLng(WScript.Arguments(1))

' Paths are separated by semicolons; names may hold blanks and commas.
code = mail.SimpleSendAttachmentScriptable("Zoe <zoe@bjork.example>", _
    "ann@example.org", _
    "Programme and menu", _
    "Both are attached.", _
    files.BuildPath(folder, "programme.pdf") & "; " & files.BuildPath(folder, "menu.csv"), _
    text)

If code <> 0 Then
    WScript.Echo "Not sent (" & code & "): " & text
    WScript.Quit 1
End If
WScript.Echo "Sent."
