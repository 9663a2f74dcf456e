' Sends to a server that keeps its messages as files: send.vbs port folder.

Function Person(name, address)
    Set Person = CreateObject("Quorvane.MailAddress")
    Person.Name = name
    Person.Address = address
End Function

Sub Contains(what, text, part)
    If InStr(text, part) = 0 Then Fail what & ": no '" & part & "' in '" & text & "'"
End Sub

Dim mail, message, code, text, folder, envelope, received
folder = WScript.Arguments(1)
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = "127.0.0.1"
mail.SmtpPort = WScript.Arguments(0)
mail.SenderHostname = "client.example.org"

Set message = CreateObject("Quorvane.MailMessage")
message.SetSender Person("Ann Miller", "ann@example.org")
message.SetReplyTo Person("", "replies@example.org")
message.AddRecipient Person("Bob", "bob@example.org")
message.AddCcRecipient Person("", "carol@example.org")
message.AddBccRecipient Person("", "dave@example.org")
message.AddHeader "X-Tag", "first"
message.AddHeader "X-Tag", "second"
message.MessageSubject = "Caf" & Chr(233)
message.MessageBody = "Hello," & vbCrLf & ".a line with a dot" & vbCrLf

text = "left over"
code = mail.SendScriptable(message, True, text)
Equal "code", CLng(code), CLng(0)
Equal "text", text, ""
Equal "last error code", mail.GetLastErrorCode, CLng(0)

envelope = WScript.ReadFile(folder & "/0001.json")
Contains "name given in EHLO", envelope, """helo"": ""client.example.org"""
Contains "reverse-path", envelope, """from"": ""ann@example.org"""
Contains "recipients", envelope, "[""bob@example.org"", ""carol@example.org"", ""dave@example.org""]"

received = WScript.ReadFile(folder & "/0001.eml")
Contains "sender", received, "Ann Miller"
Contains "reply-to", received, "replies@example.org"
Contains "subject", received, vbCrLf & "Subject: =?"
Contains "extra header", received, vbCrLf & "X-Tag: second" & vbCrLf
Contains "body", received, vbCrLf & vbCrLf & "Hello," & vbCrLf & ".a line with a dot" & vbCrLf
If InStr(received, "X-Tag: first") > 0 Then Fail "a header that was replaced was sent"
If InStr(received, "dave@") > 0 Then Fail "a blind-copy recipient stands in the header"

' The same objects again: a send leaves them as they were.
message.ClearCcRecipients
message.ClearBccRecipients
Equal "code of the second send", CLng(mail.SendScriptable(message, True, text)), CLng(0)
Contains "recipients of the second send", WScript.ReadFile(folder & "/0002.json"), "[""bob@example.org""]"

Finish
