' Sends directly to the mail server of the recipient's domain, which DNS tells.
'
'     cscript direct.vbs recipient [announced-name]

Option Explicit

Function Address(text)
    Set Address = CreateObject("Quorvane.MailAddress")
    Address.Address = text
End Function

Dim message
Set message = CreateObject("Quorvane.MailMessage")
message.SetSender Address("Zoe <zoe@bjork.example>")
message.AddRecipient Address(WScript.Arguments(0))
message.MessageSubject = "Tonight"
message.MessageBody = "Dinner at eight?"

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
If WScript.Arguments.Count > 1 Then mail.SenderHostname = WScript.Arguments(1)

code = mail.SendScriptable(message, False, text)
If code <> 0 Then
    WScript.Echo "Not sent (" & code & "): " & text
    WScript.Quit 1
End If
WScript.Echo "Sent."
