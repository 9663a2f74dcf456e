' Sends an HTML file with the pictures that it shows, and the same as plain text for readers
' without HTML.
'
'     cscript newsletter.vbs server [port]

Option Explicit

Dim files, folder
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.BuildPath(files.GetParentFolderName(WScript.ScriptFullName), "newsletter")

Function Address(text)
    Set Address = CreateObject("Quorvane.MailAddress")
    Address.Address = text
End Function

Dim message
Set message = CreateObject("Quorvane.MailMessage")
message.SetSender Address("Zoe <zoe@bjork.example>")
message.AddRecipient Address("Ann Miller <ann@example.org>")
message.MessageSubject = "Midsummer"
message.ImportHTML files.BuildPath(folder, "newsletter.html")
message.AltMessageBody = files.OpenTextFile(files.BuildPath(folder, "newsletter.txt")).ReadAll

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then mail.SmtpPort = CLng(WScript.Arguments(1))

code = mail.SendScriptable(message, True, text)
If code <> 0 Then
    WScript.Echo "Not sent (" & code & "): " & text
    WScript.Quit 1
End If
WScript.Echo "Sent."
