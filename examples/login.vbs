' Sends through a relay that wants encryption and a password, which is the first line of a file that
' nobody else may read.
'
'     cscript login.vbs server port password-file

Option Explicit

Dim files, passwordFile
Set files = CreateObject("Scripting.FileSystemObject")
passwordFile = WScript.Arguments(2)

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
mail.SmtpPort = CLng(WScript.Arguments(1))
mail.SmtpSSL = True
mail.SmtpUsername = "zoe@bjork.example"
mail.SmtpPassword = files.OpenTextFile(passwordFile).ReadLine

code = mail.SimpleSendScriptable("Zoe <zoe@bjork.example>", "ann@example.org", "Tonight", _
    "Dinner at eight?", text)
If code <> 0 Then
    WScript.Echo "Not sent (" & code & "): " & text
    WScript.Quit 1
End If
WScript.Echo "Sent."
