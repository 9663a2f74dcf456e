' Sends the sample message: an HTML body with a picture inside it, the same as plain text for
' readers without HTML, and two attachments.
'
'     cscript send.vbs server [port]

Option Explicit

Const MailFormatHtml = 1

If WScript.Arguments.Count < 1 Then
    WScript.Echo "Usage: cscript send.vbs server [port]"
    WScript.Quit 2
End If

Dim files, folder
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.BuildPath(files.GetParentFolderName(WScript.ScriptFullName), "sample")

Function ReadText(name)
    Dim stream
    Set stream = files.OpenTextFile(files.BuildPath(folder, name))
    ReadText = stream.ReadAll
    stream.Close
End Function

Function Person(name, address)
    Dim result
    Set result = CreateObject("Quorvane.MailAddress")
    result.Name = name
    result.Address = address
    Set Person = result
End Function

Function FileToAttach(file, contentType, name)
    Dim result
    Set result = CreateObject("Quorvane.MailAttachment")
    result.File = files.BuildPath(folder, file)
    result.ContentType = contentType
    result.Name = name
    Set FileToAttach = result
End Function

' What goes out. Chr counts in the system's ANSI code page: Windows-1252 here.
Dim message, picture, menu
Set message = CreateObject("Quorvane.MailMessage")
message.SetSender Person("Zo" & Chr(235) & " Bj" & Chr(246) & "rk", "zoe@bjork.example")
message.AddRecipient Person("Ann Miller", "ann@example.org")
message.AddCcRecipient Person("", "music@example.org")
message.AddBccRecipient Person("", "archive@bjork.example")
message.MessageSubject = "Midsummer at Caf" & Chr(233) & " Bj" & Chr(246) & "rk " & _
    Chr(150) & " programme and menu"

message.MessageBodyFormat = MailFormatHtml
message.MessageBody = ReadText("body.html")
message.AltMessageBody = ReadText("body.txt")

Set picture = FileToAttach("logo.png", "image/png", "logo.png")
picture.Inline = True
picture.ContentId = "logo@bjork.example"
message.AddAttachment picture

message.AddAttachment FileToAttach("programme.pdf", "application/pdf", "programme.pdf")

Set menu = FileToAttach("menu.csv", "text/csv", "Men" & Chr(252) & ".csv")
menu.Charset = "utf-8"
message.AddAttachment menu

' Where it goes.
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
